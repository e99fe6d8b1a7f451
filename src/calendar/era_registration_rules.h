#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/held.h"
#include "desk/screen_context.h"

namespace calendar {

// Screen 年号登: the era table, one era at a time. Messages bear the title "年号登録"; wrong boxes are dark red.
struct 年号登Form {
    desk::Text fnen_nengo;
    desk::Text fnen_snen;
    desk::Text fnen_enen;
    desk::Held<store::tbl_nengo> held;
};

void beginEras(年号登Form& form, desk::ScreenContext& context, desk::Desk& desk); // with empty boxes

// 年号照会: shows the era that the year in the start-year box falls in. A year after the end of every era is not found.
void lookUpEra(年号登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 西暦照会: shows the years of the named era.
void lookUpYears(年号登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// The same without a message: where there is no such era, the boxes show a new one.
void lookUpNamedEra(年号登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 更新 and 削除 write the era of the name box; one that the screen does not show is read when the button is pressed.
// Where it is another in the file after Yes, this is told and nothing is written.
// Each asks before it writes. Years run from 1500 to 2050, the last one not before the first.
void registerEra(年号登Form& form, desk::ScreenContext& context, desk::Desk& desk); // 登録
void updateEra(年号登Form& form, desk::ScreenContext& context, desk::Desk& desk);   // 更新: the years, never the name
void removeEra(年号登Form& form, desk::ScreenContext& context, desk::Desk& desk);   // 削除

} // namespace calendar
