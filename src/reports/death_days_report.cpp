// 祥月命日表: the dead of a month, or of one of its days, read at the altar.
#include "memorials/schedule_rules.h"
#include "reports/deceased.h"

#include <algorithm>
#include <set>

using namespace Qt::StringLiterals;

namespace reports {

namespace {

struct Remembered {
    const Deceased* deceased;
    int day;   // under which he stands
    int years; // since his death
};

// The anniversary that falls on this day, where one does.
QString anniversaryText(int years) {
    for (const memorials::Anniversary& each : memorials::AnniversaryTable)
        if (each.unit == memorials::Unit::years && each.amount == years)
            return QString::fromUtf16(each.label);
    return {};
}

printing::Listing make(store::Database& database, const Wish& wish) {
    EraForms eras(database);
    const QDate last(wish.year, 12, 31);
    const std::vector<Deceased> all =
        selectDeceased(database, eras, "substr(tblkak_mei_ymd, 6, 2) = ? AND tblkak_mei_ymd <= ?",
                       {QDate(wish.year, wish.month, 1).toString(u"MM"_s), last.toString(Qt::ISODate)});
    const bool commonFebruary = wish.month == 2 && !QDate::isLeapYear(wish.year);
    std::vector<Remembered> remembered;
    for (const Deceased& deceased : all) {
        const int years = wish.year - deceased.death.year();
        const auto stand = [&](int day) {
            if (wish.day == 0 || wish.day == day)
                remembered.push_back({&deceased, day, years});
        };
        stand(deceased.death.day());
        // A year without the day remembers him on the last of the month as well.
        if (commonFebruary && deceased.death.day() == 29)
            stand(28);
    }
    std::ranges::stable_sort(remembered, {}, &Remembered::day);

    QString range = eras.year(wish.year) + QString::number(wish.month) + u'月';
    if (wish.day != 0)
        range += QString::number(wish.day) + u'日';
    printing::Listing list{
        .title = u"祥月命日表"_s, .range = range, .type = printing::Type::large, .lie = printing::Lie::across};
    using Row = const Remembered&;
    list.blocks = {tableOf<Remembered>(
        remembered,
        {
            {u"戒名"_s, [](Row row) { return row.deceased->posthumousName; }},
            {u"俗名"_s, [](Row row) { return row.deceased->secularName; }},
            {u"命日"_s, [](Row row) { return row.deceased->deathText; }},
            {u"年数"_s, [](Row row) { return u"%1年"_s.arg(row.years); }, desk::Align::right},
            {u"回忌"_s, [](Row row) { return anniversaryText(row.years); }},
            {u"檀家"_s, [](Row row) { return householdText(*row.deceased); }},
            {u"当主"_s, [](Row row) { return row.deceased->head; }},
        },
        {[](Row one, Row other) { return one.day == other.day; },
         [](std::span<const Remembered> group) { return u"%1日　%2名"_s.arg(group.front().day).arg(group.size()); }})};
    std::set<const Deceased*> withoutHousehold;
    for (const Remembered& row : remembered) {
        if (!row.deceased->householdFound)
            withoutHousehold.insert(row.deceased);
    }
    noteDeceased(list, database, static_cast<qint64>(withoutHousehold.size()));
    if (remembered.empty())
        list.nothing = range + u"が祥月命日の方は、過去帳に登録されていません。"_s;
    return list;
}

} // namespace

Report 祥月命日表() {
    return {.title = u"祥月命日表"_s,
            .year = Box::needed,
            .month = Box::needed,
            .day = Box::optional,
            .preset = [](QDate today) { return Wish{.year = today.year(), .month = today.month()}; },
            .make = make};
}

} // namespace reports
