#pragma once

#include "ui/workplace.h"

namespace family {

std::unique_ptr<ui::Screen> 家族一(ui::Workplace& workplace);
std::unique_ptr<ui::Screen> 過去一(ui::Workplace& workplace);

} // namespace family
