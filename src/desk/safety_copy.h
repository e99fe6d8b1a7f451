#pragma once

#include "desk/desk.h"

namespace desk {

// Copies the register before an import or an operation that erases a household, with a progress that the user can
// cancel. Where no copy could be made, says why under the title and asks whether to go on without one. True when the
// operation may begin. Throws where the register cannot be opened.
bool copyBefore(Desk& desk, const QString& title);

} // namespace desk
