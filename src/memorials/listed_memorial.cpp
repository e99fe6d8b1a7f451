#include "memorials/listed_memorial.h"

#include "store/row_rules.h"
#include "store/table.h"

#include <tuple>

using namespace Qt::StringLiterals;

namespace memorials {

MemorialTie MemorialTie::of(const store::tbl_hohyo& row) {
    return {row.tblhoy_zokunameg, row.tblhoy_kaiki_yymd, row.tblhoy_no};
}

bool MemorialTie::operator<(const MemorialTie& other) const {
    return std::tuple(deceased.toUtf8(), scheduled, household) <
           std::tuple(other.deceased.toUtf8(), other.scheduled, other.household);
}

bool memorialExists(const store::tbl_hohyo& row) {
    // One that is scheduled on no day has no key to be looked for by.
    if (!row.tblhoy_kaiki_yymd.isValid())
        return true;
    store::Database database;
    return store::find(database, store::idxhoy_hohyo, row.tblhoy_no, row.tblhoy_zokunameg, row.tblhoy_kaiki_yymd)
        .has_value();
}

bool isDue(const store::tbl_hohyo& row, QDate today) {
    return !store::isHeld(row) &&
           (row.tblhoy_kaiki_yymd >= today || (store::isReserved(row) && row.tblhoy_kaiki_rymd >= today));
}

QString startTimeText(const store::tbl_hohyo& row) {
    const int minute = row.tblhoy_kaiki_mint.value_or(0);
    return u"%1 %2：%3"_s.arg(row.tblhoy_kaiki_ampm == store::codes::morning ? u"AM"_s : u"PM"_s)
        .arg(row.tblhoy_kaiki_hour.value_or(0))
        .arg(minute == 0 ? u"00"_s : QString::number(minute));
}

void fillEraTexts(calendar::EraTexts& eras, ListedMemorial& row) {
    row.scheduledEra = eras.of(row.tblhoy_kaiki_yymd);
    if (store::isReserved(row))
        row.reservedEra = eras.of(row.tblhoy_kaiki_rymd);
    if (store::isHeld(row))
        row.heldEra = eras.of(row.tblhoy_kaiki_jymd);
    if (store::isNotified(row))
        row.noticeEra = eras.of(row.tblhoy_tsuchi_ymd);
}

void fillEraTextsAndHouseholds(std::vector<ListedMemorial>& page, const QString& title, desk::Desk& desk) {
    store::Database database;
    {
        store::Table households(database, store::idxdnk_no);
        for (ListedMemorial& row : page) {
            if (store::seekHousehold(households, row.tblhoy_no))
                row.household = households.row();
        }
    }
    calendar::EraTexts eras(database, desk);
    for (ListedMemorial& row : page) {
        fillEraTexts(eras, row);
        if (!row.household)
            desk.notify(u"檀家情報を取得出来ません。DBの整合性を確認して下さい"_s, title);
    }
}

std::function<QString(ListedRow)> householdText(QString store::tbl_danka::*field) {
    return [field](ListedRow row) { return row.household ? (*row.household).*field : QString(); };
}

void publishMemorial(const store::tbl_hohyo& row, desk::ScreenContext& context) {
    context.G初期値();
    context.publishHousehold(row.tblhoy_no);
    context.dnk_kbn = desk::categoryText(true);
    context.nameDeceased(row.tblhoy_danknameg, row.tblhoy_zokunameg);
    context.hoy_kaiki_yymd = row.tblhoy_kaiki_yymd;
}

} // namespace memorials
