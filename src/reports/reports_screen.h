#pragma once

#include "ui/workplace.h"

namespace reports {

std::unique_ptr<ui::Screen> 帳票(ui::Workplace& workplace);

} // namespace reports
