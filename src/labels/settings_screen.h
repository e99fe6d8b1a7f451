#pragma once

#include "ui/workplace.h"

#include <memory>

namespace labels {

std::unique_ptr<ui::Screen> 宛名設定(ui::Workplace& workplace);

} // namespace labels
