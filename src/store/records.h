#pragma once

#include "store/row_rules.h"
#include "store/table.h"

#include <cstdint>
#include <optional>
#include <tuple>
#include <vector>

// Rows of the register that belong together, wherever they were read: a household with what is its own in a copy, or
// what one deletion took.
namespace store {

template <class Row> struct Was {
    Row row;
    std::optional<Row> became; // what a deletion made of it; absent where it took the row away
};

// A household as it was when the rows of its number were: enough to tell it from another one of that number. Branches
// follow the household that is none.
struct HouseholdThen {
    std::int16_t number = 0;
    QString nameg;
    QString namek;
    QString toshug;
    QString tel;
    QString jyusho1;
    QDate added;

    static HouseholdThen of(const tbl_danka& row);
    bool operator==(const HouseholdThen&) const = default;
};

// Whether two households of one number are one and the same, changed in between or not. In doubt they are not.
bool areSame(const HouseholdThen& one, const HouseholdThen& other);

// The household of a number, the one that is no branch.
std::optional<HouseholdThen> householdOf(Database& database, std::int16_t number);

class Records {
  public:
    template <class Row> std::vector<Was<Row>>& of() { return std::get<std::vector<Was<Row>>>(rows_); }
    template <class Row> const std::vector<Was<Row>>& of() const { return std::get<std::vector<Was<Row>>>(rows_); }
    template <class Row> void add(const Row& row) { of<Row>().push_back({row, {}}); }

    // The table's current row, which is about to be deleted, or rewritten as given.
    template <class Row, class... Keys>
    void take(const Table<Row, Keys...>& table, std::optional<std::type_identity_t<Row>> became = {}) {
        readable = readable && table.readable();
        of<Row>().push_back({table.row(), std::move(became)});
    }

    // Adds what another one holds.
    void add(const Records& other);

    // Calls each(rows) for the rows of every table.
    template <class Each> void forEach(Each each) const {
        std::apply([&](const auto&... rows) { (each(rows), ...); }, rows_);
    }
    template <class Each> void forEach(Each each) {
        std::apply([&](auto&... rows) { (each(rows), ...); }, rows_);
    }
    std::size_t size() const;

    // Adds the households of the rows' numbers as they are here or stand in the database, each once.
    void addHouseholds(Database& database);

    std::vector<HouseholdThen> households;
    bool readable = true; // false when a date of a row taken is none: these rows do not hold all that the file did

  private:
    std::tuple<std::vector<Was<tbl_danka>>, std::vector<Was<tbl_kazoku>>, std::vector<Was<tbl_kakocho>>,
               std::vector<Was<tbl_hohyo>>, std::vector<Was<tbl_ohaka>>, std::vector<Was<tbl_nengo>>,
               std::vector<Was<マスタ>>>
        rows_;
};

enum class RecordKind { household, member, deceased, memorial, grave, era, master };

RecordKind kindOf(const tbl_danka&);
RecordKind kindOf(const tbl_kazoku&);
RecordKind kindOf(const tbl_kakocho&);
RecordKind kindOf(const tbl_hohyo&);
RecordKind kindOf(const tbl_ohaka&);
RecordKind kindOf(const tbl_nengo&);
RecordKind kindOf(const マスタ&);

// 檀家, 家族, 過去帳, 法要, お墓, 年号, マスター
QString kindText(RecordKind kind);

// What the user knows a row by, the number of its household apart.
QString nameOf(const tbl_danka& row);
QString nameOf(const tbl_kazoku& row);
QString nameOf(const tbl_kakocho& row);
QString nameOf(const tbl_hohyo& row);
QString nameOf(const tbl_ohaka& row);
QString nameOf(const tbl_nengo& row);
QString nameOf(const マスタ& row);

// The number of a row's household; 0 for what belongs to none.
template <class Row> std::int16_t numberOf([[maybe_unused]] const Row& row) {
    if constexpr (std::is_same_v<Row, tbl_danka>)
        return row.tbldnk_no1;
    else if constexpr (std::is_same_v<Row, tbl_nengo> || std::is_same_v<Row, マスタ>)
        return 0;
    else
        return row.*householdNumber<Row>;
}

// What the erasure of its household makes of a grave: a vacant, disposed one that keeps number, place and fees.
tbl_ohaka givenBack(const tbl_ohaka& grave, QDate day);

// A household with all that bears its number.
Records householdIn(Database& database, std::int16_t number);

// One record by its rowid: a household with all that is its own, an entry of the death register with its memorials. A
// family member who lives again since his entry was deleted is dead again with it. Empty where there is none.
Records recordIn(Database& database, RecordKind kind, qint64 rowid);

} // namespace store
