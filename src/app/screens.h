#pragma once

#include "ui/workplace.h"

namespace app {

// Every screen of the program by name: the one place where they are made.
QHash<QString, ui::ScreenMaker> screens();

} // namespace app
