#include "store/records.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace store {

namespace {

template <class Row, class... Values>
void addRows(Records& records, Database& database, const std::string& condition, const Values&... values) {
    for (const Row& row :
         selectAll<Row>(database, "WHERE " + condition + " ORDER BY " + Description<Row>::table + ".rowid", values...))
        records.add(row);
}

template <class Row> std::string ofHousehold() {
    return std::string(columnOf(householdNumber<Row>)) + " = ?";
}

template <class Row> std::optional<Row> rowOf(Database& database, qint64 rowid) {
    const auto rows = selectAll<Row>(database, "WHERE rowid = ?", rowid);
    return rows.empty() ? std::nullopt : std::optional(rows.front());
}

void addDeceased(Records& records, Database& database, const tbl_kakocho& entry) {
    records.add(entry);
    addRows<tbl_hohyo>(records, database, "tblhoy_no = ? AND tblhoy_danknameg = ? AND tblhoy_zokunameg = ?",
                       entry.tblkak_no, entry.tblkak_dnknameg, entry.tblkak_zokunameg);
    const auto member = find(database, idxkzk_kazoku, entry.tblkak_no, entry.tblkak_dnknameg, entry.tblkak_zokunameg);
    if (member && !isLiving(*member)) {
        tbl_kazoku living = *member;
        living.tblkzk_seishikbn = codes::living;
        records.of<tbl_kazoku>().push_back({*member, living});
    }
}

} // namespace

RecordKind kindOf(const tbl_danka&) {
    return RecordKind::household;
}
RecordKind kindOf(const tbl_kazoku&) {
    return RecordKind::member;
}
RecordKind kindOf(const tbl_kakocho&) {
    return RecordKind::deceased;
}
RecordKind kindOf(const tbl_hohyo&) {
    return RecordKind::memorial;
}
RecordKind kindOf(const tbl_ohaka&) {
    return RecordKind::grave;
}
RecordKind kindOf(const tbl_nengo&) {
    return RecordKind::era;
}
RecordKind kindOf(const マスタ&) {
    return RecordKind::master;
}

QString kindText(RecordKind kind) {
    switch (kind) {
    case RecordKind::household:
        return u"檀家"_s;
    case RecordKind::member:
        return u"家族"_s;
    case RecordKind::deceased:
        return u"過去帳"_s;
    case RecordKind::memorial:
        return u"法要"_s;
    case RecordKind::grave:
        return u"お墓"_s;
    case RecordKind::era:
        return u"年号"_s;
    case RecordKind::master:
        break;
    }
    return u"マスター"_s;
}

QString nameOf(const tbl_danka& row) {
    const QString branch = row.tbldnk_no2 == codes::mainHousehold ? QString() : u"分家%1 "_s.arg(row.tbldnk_no2);
    return branch + row.tbldnk_nameg + (row.tbldnk_toshug.isEmpty() ? QString() : u"（%1）"_s.arg(row.tbldnk_toshug));
}
QString nameOf(const tbl_kazoku& row) {
    return row.tblkzk_nameg;
}
QString nameOf(const tbl_kakocho& row) {
    return row.tblkak_zokunameg;
}
QString nameOf(const tbl_hohyo& row) {
    return u"%1 %2（%3）"_s.arg(row.tblhoy_zokunameg, row.tblhoy_kaiki_mei,
                                row.tblhoy_kaiki_yymd.toString(u"yyyy/MM/dd"_s));
}
QString nameOf(const tbl_ohaka& row) {
    return u"%1番（%2 %3）%4"_s.arg(QString::number(row.tblhak_no), row.tblhak_banchi1, row.tblhak_banchi2,
                                    row.tblhak_bohyo_mei);
}
QString nameOf(const tbl_nengo& row) {
    return row.tblnen_nengo;
}
QString nameOf(const マスタ& row) {
    return u"%1-%2 %3"_s.arg(row.マ_区分).arg(row.マ_NO).arg(row.マ_名称);
}

HouseholdThen HouseholdThen::of(const tbl_danka& row) {
    return {row.tbldnk_no1, row.tbldnk_nameg,   row.tbldnk_namek, row.tbldnk_toshug,
            row.tbldnk_tel, row.tbldnk_jyusho1, row.tbldnk_addymd};
}

// Families of one name live in one village, and an import gives all of them the same day: the head or the telephone
// has to agree, and something else.
bool areSame(const HouseholdThen& one, const HouseholdThen& other) {
    if (one == other)
        return true;
    const auto agree = [](const auto& a, const auto& b) {
        return a == b && !a.isNull() && a != std::decay_t<decltype(a)>();
    };
    const int strong = agree(one.toshug, other.toshug) + agree(one.tel, other.tel);
    const int weak = agree(one.nameg, other.nameg) + agree(one.jyusho1, other.jyusho1) + agree(one.added, other.added);
    return strong > 0 && strong + weak > 1;
}

std::optional<HouseholdThen> householdOf(Database& database, std::int16_t number) {
    const auto row = findHousehold(database, number);
    return row ? std::optional(HouseholdThen::of(*row)) : std::nullopt;
}

void Records::add(const Records& other) {
    other.forEach([this](const auto& rows) {
        for (const auto& was : rows) {
            using Row = std::decay_t<decltype(was.row)>;
            auto& known = of<Row>();
            // Equal rows may stand beside each other; one that was changed is the one named without its change.
            const auto same = was.became ? std::ranges::find(known, was.row, &Was<Row>::row) : known.end();
            if (same == known.end())
                known.push_back(was);
            else
                same->became = was.became;
        }
    });
    for (const HouseholdThen& household : other.households)
        if (std::ranges::find(households, household.number, &HouseholdThen::number) == households.end())
            households.push_back(household);
}

std::size_t Records::size() const {
    std::size_t count = 0;
    forEach([&count](const auto& rows) { count += rows.size(); });
    return count;
}

void Records::addHouseholds(Database& database) {
    const auto add = [&](std::int16_t number) {
        if (number == 0 || std::ranges::any_of(households, [&](const auto& known) { return known.number == number; }))
            return;
        // What was taken already counts, not what is left.
        for (const Was<tbl_danka>& was : of<tbl_danka>()) {
            if (was.row.tbldnk_no1 == number && was.row.tbldnk_no2 == codes::mainHousehold) {
                households.push_back(HouseholdThen::of(was.row));
                return;
            }
        }
        if (const auto found = householdOf(database, number))
            households.push_back(*found);
    };
    forEach([&add](const auto& rows) {
        for (const auto& was : rows)
            add(numberOf(was.row));
    });
}

tbl_ohaka givenBack(const tbl_ohaka& grave, QDate day) {
    tbl_ohaka vacant;
    vacant.tblhak_no = grave.tblhak_no;
    vacant.tblhak_banchi1 = grave.tblhak_banchi1;
    vacant.tblhak_banchi2 = grave.tblhak_banchi2;
    vacant.tblhak_shiyo_ryokin = grave.tblhak_shiyo_ryokin;
    vacant.tblhak_kanri_ryokin = grave.tblhak_kanri_ryokin;
    vacant.tblhak_bohyo_kbn = codes::vacantGrave;
    vacant.tblhak_haiki_kbn = codes::yes;
    vacant.tblhak_haiki_ymd = day;
    vacant.tblhak_dnk_no = codes::noHousehold;
    vacant.tblhak_add_ymd = day;
    return vacant;
}

Records householdIn(Database& database, std::int16_t number) {
    Records records;
    addRows<tbl_danka>(records, database, "tbldnk_no1 = ?", number);
    addRows<tbl_kazoku>(records, database, ofHousehold<tbl_kazoku>(), number);
    addRows<tbl_kakocho>(records, database, ofHousehold<tbl_kakocho>(), number);
    addRows<tbl_hohyo>(records, database, ofHousehold<tbl_hohyo>(), number);
    addRows<tbl_ohaka>(records, database, ofHousehold<tbl_ohaka>(), number);
    records.addHouseholds(database);
    return records;
}

Records recordIn(Database& database, RecordKind kind, qint64 rowid) {
    Records records;
    const auto addOne = [&]<class Row>(const std::optional<Row>& row) {
        if (row)
            records.add(*row);
    };
    switch (kind) {
    case RecordKind::household:
        if (const auto row = rowOf<tbl_danka>(database, rowid))
            return householdIn(database, row->tbldnk_no1);
        break;
    case RecordKind::member:
        addOne(rowOf<tbl_kazoku>(database, rowid));
        break;
    case RecordKind::deceased:
        if (const auto row = rowOf<tbl_kakocho>(database, rowid))
            addDeceased(records, database, *row);
        break;
    case RecordKind::memorial:
        addOne(rowOf<tbl_hohyo>(database, rowid));
        break;
    case RecordKind::grave:
        addOne(rowOf<tbl_ohaka>(database, rowid));
        break;
    case RecordKind::era:
        addOne(rowOf<tbl_nengo>(database, rowid));
        break;
    case RecordKind::master:
        addOne(rowOf<マスタ>(database, rowid));
        break;
    }
    records.addHouseholds(database);
    return records;
}

} // namespace store
