// 年回表: who has an anniversary in a calendar year, by the schedule's table alone, whatever memorials are registered.
#include "memorials/schedule_rules.h"
#include "reports/deceased.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using memorials::Anniversary;
using memorials::AnniversaryTable;
using memorials::Unit;

namespace reports {

namespace {

constexpr int byAnniversary = 0;

QString label(std::size_t anniversary) {
    return QString::fromUtf16(AnniversaryTable[anniversary].label);
}

// The days of death that an anniversary in the year comes from, first and last.
struct Deaths {
    QDate first;
    QDate last;
};

Deaths deathsOf(const Anniversary& anniversary, int year) {
    if (anniversary.unit == Unit::days)
        return {QDate(year, 1, 1).addDays(-anniversary.amount), QDate(year, 12, 31).addDays(-anniversary.amount)};
    return {QDate(year - anniversary.amount, 1, 1), QDate(year - anniversary.amount, 12, 31)};
}

// The table of years of death: seven lines, the anniversaries in two columns side by side.
printing::ListingTable yearsOfDeath(EraForms& eras, int year) {
    using desk::Align;
    const auto died = [&](std::size_t at) {
        const Deaths deaths = deathsOf(AnniversaryTable[at], year);
        return AnniversaryTable[at].unit == Unit::years ? eras.year(deaths.first.year())
                                                        : eras.date(deaths.first) + u"～"_s + eras.date(deaths.last);
    };
    constexpr std::size_t half = AnniversaryTable.size() / 2;
    static_assert(half * 2 == AnniversaryTable.size());
    printing::ListingTable table;
    table.heading = u"亡くなった年と回忌"_s;
    table.columns = {{u"回忌"_s}, {u"亡くなった年"_s}, {u"回忌"_s}, {u"亡くなった年"_s}};
    table.groups.emplace_back();
    for (std::size_t at = 0; at < half; ++at)
        table.groups.back().rows.push_back({label(at), died(at), label(at + half), died(at + half)});
    return table;
}

struct Due {
    const Deceased* deceased;
    std::size_t anniversary; // in the table
    QDate day;
};

std::vector<Due> dueIn(const std::vector<Deceased>& all, int year) {
    std::vector<Due> due;
    for (const Deceased& deceased : all)
        for (std::size_t at = 0; at < AnniversaryTable.size(); ++at)
            if (const QDate day = memorials::anniversaryDate(AnniversaryTable[at], deceased.death); day.year() == year)
                due.push_back({&deceased, at, day});
    return due;
}

std::vector<Column<Due>> columns(int kind) {
    std::vector<Column<Due>> all{
        {u"月日"_s, [](const Due& due) { return due.day.toString(u"M月d日"_s); }, desk::Align::right},
        {u"戒名"_s, [](const Due& due) { return due.deceased->posthumousName; }},
        {u"俗名"_s, [](const Due& due) { return due.deceased->secularName; }},
        {u"命日"_s, [](const Due& due) { return due.deceased->deathText; }},
        {u"檀家"_s, [](const Due& due) { return householdText(*due.deceased); }},
        {u"当主"_s, [](const Due& due) { return due.deceased->head; }},
    };
    if (kind != byAnniversary)
        all.insert(all.begin() + 1, {u"回忌"_s, [](const Due& due) { return label(due.anniversary); }});
    return all;
}

Groups<Due> groups(int kind) {
    if (kind == byAnniversary)
        return {[](const Due& one, const Due& other) { return one.anniversary == other.anniversary; },
                [](std::span<const Due> group) {
                    return u"%1　%2名"_s.arg(label(group.front().anniversary)).arg(group.size());
                }};
    return {
        [](const Due& one, const Due& other) { return one.day.month() == other.day.month(); },
        [](std::span<const Due> group) { return u"%1月　%2名"_s.arg(group.front().day.month()).arg(group.size()); }};
}

printing::Listing make(store::Database& database, const Wish& wish) {
    EraForms eras(database);
    std::string condition;
    QStringList bounds;
    for (const Anniversary& anniversary : AnniversaryTable) {
        const Deaths deaths = deathsOf(anniversary, wish.year);
        condition += condition.empty() ? "" : " OR ";
        condition += "tblkak_mei_ymd BETWEEN ? AND ?";
        bounds << deaths.first.toString(Qt::ISODate) << deaths.last.toString(Qt::ISODate);
    }
    const std::vector<Deceased> all = selectDeceased(database, eras, '(' + condition + ')', bounds);
    std::vector<Due> due = dueIn(all, wish.year);
    // By kana, number and name they come already.
    std::ranges::stable_sort(due, {}, [&](const Due& each) {
        return wish.kind == byAnniversary ? std::tuple(each.anniversary, each.day)
                                          : std::tuple(std::size_t{0}, each.day);
    });

    printing::Listing list{.title = u"年回表"_s,
                           .range = eras.year(wish.year) + u"に年回を迎えられる方"_s,
                           .type = printing::Type::large,
                           .lie = printing::Lie::across};
    list.blocks = {yearsOfDeath(eras, wish.year), tableOf(due, columns(wish.kind), groups(wish.kind))};
    noteDeceased(list, database, std::ranges::count(all, false, &Deceased::householdFound));
    if (due.empty())
        list.nothing = eras.year(wish.year) + u"に年回を迎えられる方は、過去帳に登録されていません。"_s;
    return list;
}

} // namespace

Report 年回表() {
    return {.title = u"年回表"_s,
            .year = Box::needed,
            .kinds = {u"回忌別"_s, u"月別"_s},
            .preset = [](QDate today) { return Wish{.year = today.year() + 1}; },
            .make = make};
}

} // namespace reports
