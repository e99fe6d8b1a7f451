#pragma once

#include "desk/held.h"
#include "memorials/listed_memorial.h"

#include <QDate>

namespace memorials {

struct 法要檀Form : desk::ListForm<ListedMemorial, QDate> { // by scheduled date
    desk::Text frm21_dankag;
    desk::Text frm21_toshug;
    desk::Text frm21_toshuk;
    desk::Text frm21_jyusho1;
    desk::Text frm21_chiku;
    desk::Text frm21_bikou;
    desk::HouseholdBlock household; // whose memorials these are

    法要檀Form();

  protected:
    bool read(const QDate& from, const Take& take) const override;
};

// The operations of the list of a household's memorials, whatever their state. Messages bear the title "檀家法要一覧".
// Shows the context's household as it was handed over, or else read by its number.
void beginHouseholdMemorials(法要檀Form& form, desk::ScreenContext& context, desk::Desk& desk);
// What an opening with this context asks for: a household whole, its branches included.
std::optional<desk::AskedRecord> askedMemorials(const desk::ScreenContext& context);
// Publishes the household listed.
void publishShown(const 法要檀Form& form, desk::ScreenContext& context);
// 個別照会: opens 法要明 modal; the list returns to its first page afterwards.
void openHouseholdMemorial(法要檀Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 故人照会: opens 過去登.
void openHouseholdDeceased(法要檀Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace memorials
