#pragma once

#include "graves/grave_list_rules.h"

// The two pickers that choose a grave for a household. The choice is handed back in hak_himo_no, 0 for none.
namespace graves {

struct PickerForm {
    bool taken = false; // closed with 紐付け
};

struct 紐区画Form : PickerForm {
    desk::Combo frm21_block;
    desk::Grid frm21_tbl;
    desk::PagingList<store::tbl_ohaka, PlaceKey> list;

    紐区画Form();
};

struct 紐墓標Form : PickerForm {
    desk::Grid frm21_tbl;
    desk::PagingList<store::tbl_ohaka, QString> list; // position: marker name

    紐墓標Form();
};

// The free graves of one section; messages bear the title "お墓紐付･区画".
void openPicker(紐区画Form& form, desk::ScreenContext& context, desk::Desk& desk);
void chooseSection(紐区画Form& form, desk::ScreenContext& context, desk::Desk& desk);
void nextPage(紐区画Form& form, desk::ScreenContext& context, desk::Desk& desk);
void previousPage(紐区画Form& form, desk::ScreenContext& context, desk::Desk& desk);
void clickRow(紐区画Form& form, desk::ScreenContext& context, desk::Desk& desk);

// Every grave with a marker name, in the order of the names; messages bear the title "お墓紐付･墓標".
void openPicker(紐墓標Form& form, desk::ScreenContext& context, desk::Desk& desk);
void nextPage(紐墓標Form& form, desk::ScreenContext& context, desk::Desk& desk);
void previousPage(紐墓標Form& form, desk::ScreenContext& context, desk::Desk& desk);
void clickRow(紐墓標Form& form, desk::ScreenContext& context, desk::Desk& desk);

// 紐付け: closes the picker and hands back the grave last clicked.
void takeGrave(PickerForm& form, desk::Desk& desk);
// The picker closes: without 紐付け nothing is handed back.
void leavePicker(const PickerForm& form, desk::ScreenContext& context);

} // namespace graves
