#pragma once

#include "ui/workplace.h"

namespace app {

// What the user chooses for himself: the size of the letters, and windows and columns as they were at first.
std::unique_ptr<ui::Screen> 設定(ui::Workplace& workplace);

} // namespace app
