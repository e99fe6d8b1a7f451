#pragma once

#include "ui/workplace.h"

namespace calendar {

std::unique_ptr<ui::Screen> 年号登(ui::Workplace& workplace);

} // namespace calendar
