#pragma once

#include "memorials/service_form.h"

#include <QDate>

namespace memorials {

struct 法要明Form : ServiceForm {
    desk::Text frm31_zoknameg;

    QDate scheduled; // of the memorial shown; absent when none was found
};

// The operations of the memorial detail: one memorial, by dnk_no1, kak_zokunameg and hoy_kaiki_yymd. Messages bear the
// title "法要明細".
// Shows deceased and memorial; reads the deceased from the death register when kak_zokunamek is empty.
void openDetail(法要明Form& form, desk::ScreenContext& context, desk::Desk& desk);
void bookOnScheduledDay(法要明Form& form, desk::ScreenContext& context, desk::Desk& desk); // 法要日に予約
void saveDetail(法要明Form& form, desk::ScreenContext& context, desk::Desk& desk);         // 更新
void deleteDetail(法要明Form& form, desk::ScreenContext& context, desk::Desk& desk);       // 削除

} // namespace memorials
