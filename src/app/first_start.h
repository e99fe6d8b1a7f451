#pragma once

#include <QString>

namespace app {

// Sees to it that the folder holds a register. Where there is none, asks whether to make an empty one, and makes it
// with the folder. False when the user does not want it or it could not be made, of which a message tells; nothing is
// written then, an empty folder apart.
bool offerRegister(const QString& folder);

} // namespace app
