#pragma once

#include "ui/workplace.h"

namespace households {

std::unique_ptr<ui::Screen> 代替当(ui::Workplace& workplace);

} // namespace households
