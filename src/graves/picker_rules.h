#pragma once

#include "graves/grave_list_rules.h"

// The two pickers that choose a grave for a household. The choice is handed back in hak_himo_no, 0 for none.
namespace graves {

struct PickerForm {
    bool taken = false; // closed with 紐付け
};

// A click hands the grave back.
template <class Key> struct PickerList : PickerForm, desk::ListForm<store::tbl_ohaka, Key> {
    using desk::ListForm<store::tbl_ohaka, Key>::ListForm;

  protected:
    void chosen(const store::tbl_ohaka& grave, desk::ScreenContext& context) override {
        context.hak_himo_no = grave.tblhak_no;
    }
};

struct 紐区画Form : PickerList<PlaceKey> {
    desk::Combo frm21_block;

    紐区画Form();
    QString range() const override { return sectionRange(list.start()); }

  protected:
    bool read(const PlaceKey& from, const Take& take) const override;
    int total() const override;
};

struct MarkerKey {
    QString name; // tblhak_bohyo_mei
    std::int16_t grave = 0;

    bool operator==(const MarkerKey&) const = default;
};

struct 紐墓標Form : PickerList<MarkerKey> {
    紐墓標Form();

  protected:
    bool read(const MarkerKey& from, const Take& take) const override;
    int total() const override;
};

// The free graves of one section; messages bear the title "お墓紐付･区画".
void beginPicker(紐区画Form& form, desk::ScreenContext& context, desk::Desk& desk);
void chooseSection(紐区画Form& form, desk::ScreenContext& context, desk::Desk& desk);

// Every grave with a marker name, in the order of the names; messages bear the title "お墓紐付･墓標".
void beginPicker(紐墓標Form& form, desk::ScreenContext& context, desk::Desk& desk);

// 紐付け: closes the picker and hands back the grave last clicked.
void takeGrave(PickerForm& form, desk::Desk& desk);
// The picker closes: without 紐付け nothing is handed back.
void leavePicker(const PickerForm& form, desk::ScreenContext& context);

} // namespace graves
