#pragma once

#include "ui/workplace.h"

namespace masters {

std::unique_ptr<ui::Screen> マスター登(ui::Workplace& workplace);

} // namespace masters
