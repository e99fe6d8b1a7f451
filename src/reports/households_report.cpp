// 檀家名簿: the households by kana or by district, as the list on the screen orders them.
#include "households/kana_list_rules.h"
#include "masters/master_rules.h"
#include "reports/report.h"
#include "store/row_rules.h"
#include "store/table.h"

#include <algorithm>
#include <map>
#include <unordered_map>

using namespace Qt::StringLiterals;

namespace reports {

namespace {

enum Kind { byKana, byDistrict, byKanaWithFamilies, byDistrictWithFamilies };

struct Listed {
    store::tbl_danka household;
    std::size_t tab = 0;      // of the kana list
    std::size_t district = 0; // in the order of the master list; those it lacks follow, none is last
    QString family;
};

// Every household, branches included, at its place in the kana list.
std::vector<Listed> inKanaOrder(store::Database& database) {
    std::unordered_map<std::int16_t, std::vector<store::tbl_danka>> rows;
    for (store::tbl_danka& row : store::selectAll<store::tbl_danka>(database, "ORDER BY tbldnk_no1, tbldnk_no2;"))
        rows[row.tbldnk_no1].push_back(std::move(row));
    std::vector<Listed> listed;
    const auto tabs = households::readKanaTabs();
    for (std::size_t tab = 0; tab < tabs.size(); ++tab) {
        for (const households::KanaLine& line : tabs[tab]) {
            auto& same = rows[line.no1];
            const auto row = std::ranges::find(same, line.texts[1], &store::tbl_danka::tbldnk_namek);
            if (row == same.end())
                continue;
            listed.push_back({std::move(*row), tab, 0, {}});
            same.erase(row);
        }
    }
    return listed;
}

// The districts of the master list in its order, then the others by name.
void orderByDistrict(store::Database& database, std::vector<Listed>& listed) {
    constexpr std::size_t unknown = 1'000'000;
    std::map<QString, std::size_t> places;
    for (const auto& entry : store::selectAll<store::マスタ>(database, "WHERE マ_区分 = ? ORDER BY マ_NO;",
                                                             static_cast<int>(masters::Category::地区)))
        places.emplace(entry.マ_略称, places.size());
    for (Listed& each : listed) {
        const auto place = places.find(each.household.tbldnk_chiku);
        each.district = each.household.tbldnk_chiku.isEmpty() ? unknown + 1
                        : place == places.end()               ? unknown
                                                              : place->second;
    }
    std::ranges::stable_sort(listed, {}, [](const Listed& each) {
        return std::pair(each.district, each.district == unknown ? each.household.tbldnk_chiku : QString());
    });
}

// The living, by birth date and name, at the household of their number.
void addFamilies(store::Database& database, std::vector<Listed>& listed) {
    std::unordered_map<std::int16_t, QStringList> families;
    store::Selection<store::tbl_kazoku> members(
        database, "WHERE " + store::isLiving.sql() +
                      " ORDER BY tbl_kazoku.tblkzk_no1, tbl_kazoku.tblkzk_sei_ymd, tbl_kazoku.tblkzk_nameg;");
    while (members.next()) {
        const store::tbl_kazoku& member = members.row();
        families[member.tblkzk_no1] << (member.tblkzk_zokugara.isEmpty()
                                            ? member.tblkzk_nameg
                                            : member.tblkzk_nameg + u'（' + member.tblkzk_zokugara + u'）');
    }
    for (Listed& each : listed)
        if (each.household.tbldnk_no2 == store::codes::mainHousehold)
            each.family = families[each.household.tbldnk_no1].join(u'、');
}

QString numberText(const store::tbl_danka& household) {
    return household.tbldnk_no2 == store::codes::mainHousehold
               ? QString::number(household.tbldnk_no1)
               : u"%1-%2"_s.arg(household.tbldnk_no1).arg(household.tbldnk_no2);
}

printing::Listing make(store::Database& database, const Wish& wish) {
    const bool districts = wish.kind == byDistrict || wish.kind == byDistrictWithFamilies;
    const bool families = wish.kind == byKanaWithFamilies || wish.kind == byDistrictWithFamilies;
    std::vector<Listed> listed = inKanaOrder(database);
    if (districts)
        orderByDistrict(database, listed);
    if (families)
        addFamilies(database, listed);

    using Row = const Listed&;
    std::vector<Column<Listed>> columns{
        {u"檀家NO"_s, [](Row row) { return numberText(row.household); }, desk::Align::right},
        {u"檀家名"_s, [](Row row) { return row.household.tbldnk_nameg; }},
        {u"ﾖﾐｶﾞﾅ"_s, [](Row row) { return row.household.tbldnk_namek; }},
        {u"当主"_s, [](Row row) { return row.household.tbldnk_toshug; }},
        {u"区分"_s, [](Row row) { return row.household.tbldnk_dnkkbn; }},
        {u"郵便番号"_s, [](Row row) { return row.household.tbldnk_yubin; }},
        {u"住所"_s,
         [](Row row) { return QString(row.household.tbldnk_jyusho1 + u' ' + row.household.tbldnk_jyusho2).trimmed(); }},
        {u"電話番号"_s, [](Row row) { return row.household.tbldnk_tel; }},
        {u"地区"_s, [](Row row) { return row.household.tbldnk_chiku; }},
    };
    if (districts)
        columns.pop_back();
    if (families)
        columns.push_back({u"家族"_s, [](Row row) { return row.family; }});

    printing::Listing list{.title = u"檀家名簿"_s,
                           .range = (districts ? u"地区別　%1件"_s : u"五十音順　%1件"_s).arg(listed.size()),
                           .lie = printing::Lie::across};
    list.blocks = {tableOf<Listed>(listed, columns,
                                   {[districts](Row one, Row other) {
                                        return districts ? one.household.tbldnk_chiku == other.household.tbldnk_chiku
                                                         : one.tab == other.tab;
                                    },
                                    [districts](std::span<const Listed> group) {
                                        const QString& district = group.front().household.tbldnk_chiku;
                                        const QString name = !districts
                                                                 ? households::kanaTabs()[group.front().tab].caption
                                                             : district.isEmpty() ? u"地区の登録なし"_s
                                                                                  : district;
                                        return u"%1　%2件"_s.arg(name).arg(group.size());
                                    }})};
    if (listed.empty())
        list.nothing = u"檀家が登録されていません。"_s;
    return list;
}

} // namespace

Report 檀家名簿() {
    return {.title = u"檀家名簿"_s,
            .kinds = {u"五十音順"_s, u"地区別"_s, u"五十音順（家族付き）"_s, u"地区別（家族付き）"_s},
            .make = make};
}

} // namespace reports
