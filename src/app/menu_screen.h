#pragma once

#include "ui/workplace.h"

namespace app {

// The main menu: shows the register's file and today's date, clears the hand-off record when it opens.
std::unique_ptr<ui::Screen> メニュー(ui::Workplace& workplace);

} // namespace app
