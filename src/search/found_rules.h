#pragma once

#include "desk/desk.h"
#include "desk/finder.h"
#include "desk/screen_context.h"
#include "search/texts.h"

namespace search {

// Opens what a search found on the screen that shows it: the household as 檀家照会 does, a branch as itself, the member
// (家族登), the entry (過去登), the grave (お墓登, or お墓新 where it belongs to nobody). Tells where the row is there
// no more, or bears another number or name than the line. Writes nothing.
void openFound(Kind kind, const desk::FoundLine& line, desk::ScreenContext& context, desk::Desk& desk);

} // namespace search
