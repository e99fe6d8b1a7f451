// 管理費請求一覧: the graves in use whose management fee is to be billed in a year or in one of its months, with sums.
#include "reports/era_forms.h"
#include "reports/report.h"
#include "store/row_rules.h"
#include "store/table.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace reports {

namespace {

struct Bill {
    store::tbl_ohaka grave;
    std::optional<store::tbl_danka> household;
    QString day; // in era form
};

QString ofHousehold(const Bill& bill, QString store::tbl_danka::*field) {
    return bill.household ? (*bill.household).*field : QString();
}

printing::Listing make(store::Database& database, const Wish& wish) {
    EraForms eras(database);
    const QDate from(wish.year, wish.month == 0 ? 1 : wish.month, 1);
    const QDate to = wish.month == 0 ? QDate(wish.year, 12, 31) : QDate(wish.year, wish.month, from.daysInMonth());
    const auto graves = store::selectAll<store::tbl_ohaka>(
        database,
        "WHERE tbl_ohaka.tblhak_kanri_nxymd >= ? and tbl_ohaka.tblhak_kanri_nxymd <= ? "
        "ORDER BY tbl_ohaka.tblhak_kanri_nxymd ASC, tbl_ohaka.tblhak_no;",
        from, to);
    std::vector<Bill> bills;
    store::Households households(database, store::idxdnk_no);
    for (const store::tbl_ohaka& grave : graves) {
        if (!store::isInUse(grave) || !grave.tblhak_kanri_nxymd.isValid())
            continue;
        Bill& bill = bills.emplace_back(Bill{grave, {}, eras.date(grave.tblhak_kanri_nxymd)});
        if (store::seekHousehold(households, grave.tblhak_dnk_no))
            bill.household = households.row();
    }

    using desk::Align;
    using Row = const Bill&;
    QString range = eras.year(wish.year);
    if (wish.month != 0)
        range += QString::number(wish.month) + u'月';
    printing::Listing list{.title = u"管理費請求一覧"_s,
                           .range = range + u"に請求　%1件"_s.arg(bills.size()),
                           .lie = printing::Lie::across};
    list.blocks = {tableOf<Bill>(
        bills,
        {
            {u"請求日"_s, [](Row bill) { return bill.day; }},
            {u"管理NO"_s, [](Row bill) { return QString::number(bill.grave.tblhak_no); }, Align::right},
            {u"区画"_s, [](Row bill) { return bill.grave.tblhak_banchi1; }},
            {u"番地"_s, [](Row bill) { return bill.grave.tblhak_banchi2; }},
            {u"墓標名"_s, [](Row bill) { return bill.grave.tblhak_bohyo_mei; }},
            {u"檀家NO"_s, [](Row bill) { return QString::number(bill.grave.tblhak_dnk_no); }, Align::right},
            {u"檀家名"_s, [](Row bill) { return bill.grave.tblhak_dnk_nameg; }},
            {u"当主"_s, [](Row bill) { return ofHousehold(bill, &store::tbl_danka::tbldnk_toshug); }},
            {u"電話番号"_s, [](Row bill) { return ofHousehold(bill, &store::tbl_danka::tbldnk_tel); }},
            {u"管理費"_s,
             [](Row bill) {
                 const auto& fee = bill.grave.tblhak_kanri_ryokin;
                 return values::shownMoney(fee);
             },
             Align::right, [](Row bill) { return qint64{bill.grave.tblhak_kanri_ryokin.value_or(0)}; }},
        },
        {[](Row one, Row other) {
             return one.grave.tblhak_kanri_nxymd.month() == other.grave.tblhak_kanri_nxymd.month();
         },
         [](std::span<const Bill> group) {
             return u"%1月　%2件"_s.arg(group.front().grave.tblhak_kanri_nxymd.month()).arg(group.size());
         }})};
    note(list, u"金額の登録がないお墓：%1件（合計には入っていません。）"_s,
         std::ranges::count_if(bills, [](Row bill) { return !bill.grave.tblhak_kanri_ryokin; }));
    note(list, u"檀家情報を取得出来ないお墓：%1件（当主と電話番号は空欄です。）"_s,
         std::ranges::count_if(bills, [](Row bill) { return !bill.household; }));
    note(list, u"廃棄済みで請求日が残っているお墓：%1件（この表には載っていません。）"_s,
         std::ranges::count_if(graves, store::isDisposed));
    note(list, u"次回請求日を読み取れないお墓：%1件（この表には載っていません。DBの整合性を確認して下さい。）"_s,
         unreadableDates(database, "tbl_ohaka", "tblhak_kanri_nxymd"));
    if (bills.empty())
        list.nothing = range + u"に管理費を請求するお墓はありません。"_s;
    return list;
}

} // namespace

Report 管理費請求一覧() {
    return {.title = u"管理費請求一覧"_s,
            .year = Box::needed,
            .month = Box::optional,
            .preset = [](QDate today) { return Wish{.year = today.year()}; },
            .make = make};
}

} // namespace reports
