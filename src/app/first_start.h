#pragma once

#include "store/upgrade.h"

#include <QString>

namespace app {

// Sees to it that the folder holds a register. Where there is none, asks whether to make an empty one, and makes it
// with the folder. False when the user does not want it or it could not be made, of which a message tells; nothing is
// written then, an empty folder apart.
bool offerRegister(const QString& folder);

// Sees to it that the folder's register is not of an older layout. Where it is, asks whether to bring it to the newest
// one, copied first, and tells of the result. False when the user does not want it or it failed; the register is as it
// was then. True also for a file that is no register, of which the program itself tells.
bool offerUpgrade(const QString& folder, const store::UpgradeSteps& steps = store::upgradeSteps());

} // namespace app
