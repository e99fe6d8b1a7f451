#pragma once

#include "ui/workplace.h"

#include <memory>

namespace printing {

std::unique_ptr<ui::Screen> 宛名設定(ui::Workplace& workplace);

} // namespace printing
