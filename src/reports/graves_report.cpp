// お墓台帳: every grave by section, to be taken along to the graves.
#include "reports/era_forms.h"
#include "reports/report.h"
#include "store/row_rules.h"
#include "store/table.h"

#include <QCollator>
#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace reports {

namespace {

struct Grave {
    store::tbl_ohaka row;
    QString start; // dates in era form
    QString billing;
    QString remarks;
};

// As one walks past them: lot 2 before lot 10.
void orderByLot(std::vector<store::tbl_ohaka>& rows) {
    QCollator collator(QLocale(QLocale::Japanese, QLocale::Japan));
    collator.setNumericMode(true);
    std::ranges::stable_sort(rows, [&](const store::tbl_ohaka& one, const store::tbl_ohaka& other) {
        return one.tblhak_banchi1 == other.tblhak_banchi1 &&
               collator.compare(one.tblhak_banchi2, other.tblhak_banchi2) < 0;
    });
}

printing::Listing make(store::Database& database, const Wish&) {
    EraForms eras(database);
    auto rows = store::selectAll<store::tbl_ohaka>(
        database, "ORDER BY tbl_ohaka.tblhak_banchi1, tbl_ohaka.tblhak_banchi2, tbl_ohaka.tblhak_no;");
    for (auto first = rows.begin(); first != rows.end();) {
        const auto end = std::find_if(first, rows.end(), [&](const store::tbl_ohaka& row) {
            return row.tblhak_banchi1 != first->tblhak_banchi1;
        });
        std::vector<store::tbl_ohaka> section(first, end);
        orderByLot(section);
        first = std::ranges::move(section, first).out;
    }
    std::vector<Grave> graves;
    for (store::tbl_ohaka& row : rows) {
        Grave& grave = graves.emplace_back();
        grave.start = eras.date(row.tblhak_shiyo_stymd);
        grave.billing = eras.date(row.tblhak_kanri_nxymd);
        if (store::isDisposed(row))
            grave.remarks =
                row.tblhak_haiki_ymd.isValid() ? eras.date(row.tblhak_haiki_ymd) + u"廃棄　"_s : u"廃棄　"_s;
        grave.remarks += row.tblhak_biko;
        grave.row = std::move(row);
    }
    using desk::Align;
    using Row = const Grave&;
    printing::Listing list{
        .title = u"お墓台帳"_s, .range = u"区画別　%1基"_s.arg(graves.size()), .lie = printing::Lie::across};
    list.blocks = {tableOf<Grave>(
        graves,
        {
            {u"番地"_s, [](Row grave) { return grave.row.tblhak_banchi2; }},
            {u"管理NO"_s, [](Row grave) { return QString::number(grave.row.tblhak_no); }, Align::right},
            {u"墓標名"_s, [](Row grave) { return grave.row.tblhak_bohyo_mei; }},
            {u"種別"_s, [](Row grave) { return grave.row.tblhak_bohyo_kbn; }},
            {u"檀家NO"_s,
             [](Row grave) {
                 return grave.row.tblhak_dnk_no == store::codes::noHousehold ? QString()
                                                                             : QString::number(grave.row.tblhak_dnk_no);
             },
             Align::right},
            {u"檀家名"_s, [](Row grave) { return grave.row.tblhak_dnk_nameg; }},
            {u"区分"_s, [](Row grave) { return grave.row.tblhak_dnk_kbn; }},
            {u"使用開始日"_s, [](Row grave) { return grave.start; }},
            {u"使用料"_s, [](Row grave) { return values::shownMoney(grave.row.tblhak_shiyo_ryokin); }, Align::right},
            {u"管理費"_s, [](Row grave) { return values::shownMoney(grave.row.tblhak_kanri_ryokin); }, Align::right},
            {u"次回請求日"_s, [](Row grave) { return grave.billing; }},
            {u"備考"_s, [](Row grave) { return grave.remarks; }},
        },
        {[](Row one, Row other) { return one.row.tblhak_banchi1 == other.row.tblhak_banchi1; },
         [](std::span<const Grave> group) {
             const QString& section = group.front().row.tblhak_banchi1;
             return u"区画 %1　%2基"_s.arg(section.isEmpty() ? u"（登録なし）"_s : section).arg(group.size());
         }})};
    if (graves.empty())
        list.nothing = u"お墓が登録されていません。"_s;
    return list;
}

} // namespace

Report お墓台帳() {
    return {.title = u"お墓台帳"_s, .make = make};
}

} // namespace reports
