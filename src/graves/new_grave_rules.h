#pragma once

#include "graves/grave_record.h"

namespace graves {

struct お墓新Form : GraveFields {
    desk::Option frm13_haka3; // 空
    desk::Text frm13_dnknameg;
};

// The operations of the screen for graves without household. Messages bear the title "お墓 新規登録", those of the
// number issuing "お墓 登録".

// Shows the context's grave (hak_no) when it is not 0.
void beginNewGrave(お墓新Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 新規: empties the screen as for an opening without a grave, hak_no included.
void newGrave(お墓新Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 照会; sets hak_no.
void lookUpGrave(お墓新Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 登録: proposes a number (number box, hak_no), checks, asks, writes the grave and commits the number. A number that is
// not committed is proposed again.
void registerGrave(お墓新Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 更新: the grave is left without household; asks first when one holds it. Of a grave that a household held, neither
// 登録 nor 更新 stores that household's name, unless another one was typed.
void updateGrave(お墓新Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 削除.
void removeGrave(お墓新Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace graves
