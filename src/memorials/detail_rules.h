#pragma once

#include "memorials/service_form.h"

namespace memorials {

struct 法要明Form : ServiceForm {
    desk::Text frm31_zoknameg;

    desk::Held<store::tbl_hohyo> held;
};

// The operations of the memorial detail: one memorial, by dnk_no1, kak_zokunameg and hoy_kaiki_yymd. Messages bear the
// title "法要明細".
// Shows deceased and memorial, both read by their keys; the deceased as he was handed over where he was.
void beginDetail(法要明Form& form, desk::ScreenContext& context, desk::Desk& desk);
// What an opening with this context asks for.
std::optional<desk::AskedRecord> askedMemorial(const desk::ScreenContext& context);
// Names the memorial held; none where there is none or it was deleted here.
void publishShown(const 法要明Form& form, desk::ScreenContext& context);
void bookOnScheduledDay(法要明Form& form, desk::ScreenContext& context, desk::Desk& desk); // 法要日に予約
// 更新, 削除: only while the file holds the memorial as read.
void updateDetail(法要明Form& form, desk::ScreenContext& context, desk::Desk& desk);
void removeDetail(法要明Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace memorials
