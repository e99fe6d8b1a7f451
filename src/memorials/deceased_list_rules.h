#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/held.h"
#include "desk/list_form.h"
#include "desk/screen_context.h"

#include <QDate>

namespace memorials {

struct 法要個Form : desk::WholeList {
    desk::Text frm21_dankag;
    desk::Text frm21_zoknameg;
    desk::Text frm21_zoknamek;
    desk::Text frm21_kaimyog;
    desk::Text frm21_kaimyok;
    desk::Text frm21_meigymd;
    desk::Text frm21_kyounen;
    desk::Text frm21_bikou;

    std::vector<QDate> scheduled; // of the rows shown
    QDate selected;          // scheduled date of the row last clicked; absent when none is, or its memorial is gone
    bool handedOver = false; // shows the boxes of another screen

    void click(desk::ScreenContext& context, desk::Desk& desk) override;
};

// The operations of the list of one deceased's memorials (dnk_no1, dnk_nameg, kak_zokunameg), all in one grid. Messages
// bear the title "法要 記録".
// Shows the context's deceased as he was handed over, or else read by his key.
void beginDeceasedMemorials(法要個Form& form, desk::ScreenContext& context, desk::Desk& desk);
// What an opening with this context asks for.
std::optional<desk::AskedRecord> askedDeceased(const desk::ScreenContext& context);
// 個別照会: opens 法要明 modal on the row clicked and fills the grid again afterwards.
void openDeceasedMemorial(法要個Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace memorials
