#pragma once

#include "desk/desk.h"
#include "desk/screen_context.h"
#include "search/texts.h"

namespace search {

// Opens what a search found on the screen that shows it: the household as 檀家照会 does, a branch as itself, the member
// (家族登), the entry (過去登), the grave (お墓登, or お墓新 where it belongs to nobody). number is the one that was
// shown. Tells where the row is there no more. Writes nothing.
void openFound(Kind kind, qint64 rowid, const QString& number, desk::ScreenContext& context, desk::Desk& desk);

} // namespace search
