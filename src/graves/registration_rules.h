#pragma once

#include "graves/grave_record.h"

namespace graves {

struct お墓登Form : GraveFields {
    desk::Text frm13_no;
    desk::Text frm13_dankag;
    desk::Text frm13_dankak;
    desk::Option frm13_dnkkbn1; // 檀家
    desk::Option frm13_dnkkbn2; // 一般
    desk::List frm13_all_bohyo; // marker names; keys: grave numbers
    desk::Text frm13_toshug;
    desk::Text frm13_toshuk;
    desk::Text frm13_yubinno;
    desk::Text frm13_jyusho1;
    desk::Text frm13_jyusho2;
    desk::Text frm13_tel;
    desk::Text frm13_dnkbiko;

    // The household shown.
    desk::HouseholdBlock household;
};

// The operations of the grave screen. Messages bear the title "お墓 登録".

// Shows the context's household (dnk_no1, the one handed over, else that of the file) and grave (hak_no); 0 is none.
void beginRegistration(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 照会. A grave of another household asks first, and on Yes brings that household onto the screen and into the context.
void lookUpGrave(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// A click on a line of frm13_all_bohyo: shows that grave and sets hak_no.
void pickGrave(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 区画紐付 and 墓標紐付: the grave chosen in the picker (hak_himo_no) is looked up when the picker closes.
void linkBySection(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk);
void linkByMarker(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// What an opening with this context asks for: a grave, or another household than the one shown.
std::optional<desk::AskedRecord> askedGrave(const お墓登Form& form, const desk::ScreenContext& context);
// 更新: writes the grave with the household shown; undoes a disposal. A grave of a household that could not be read
// keeps its household as it is stored.
void updateGrave(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 削除.
void removeGrave(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 廃棄: the grave leaves its household and is marked disposed today, without a question.
void disposeGrave(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace graves
