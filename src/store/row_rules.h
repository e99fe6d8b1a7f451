#pragma once

#include "store/codes.h"
#include "store/table.h"

#include <optional>
#include <string>
#include <tuple>

// What makes a row a living member, a grave in use and so on: each rule once, for rows in memory and for statements.
namespace store {

// The column of a row's member.
template <class Row, class T> const char* columnOf(T Row::*member) {
    const char* name = nullptr;
    const auto look = [&](auto field) {
        if constexpr (std::is_same_v<decltype(field), Field<Row, T>>)
            if (field.member == member)
                name = field.name;
    };
    std::apply([&](auto... field) { (look(field), ...); }, Description<Row>::fields);
    return name;
}

// A stored value as it stands in a statement.
inline std::string literal(int value) {
    return std::to_string(value);
}
inline std::string literal(const QString& code) {
    return '\'' + code.toStdString() + '\'';
}

template <class Row, class T> struct Holds {
    T Row::*member;
    T value;
};
template <class Row, class T> Holds(T Row::*, T) -> Holds<Row, T>;

// Fulfilled when each of some fields holds its value.
template <class Row, class... T> class RowRule {
  public:
    explicit RowRule(Holds<Row, T>... fields) : fields_(std::move(fields)...) {}

    bool operator()(const Row& row) const {
        return std::apply([&](const auto&... field) { return ((row.*(field.member) == field.value) && ...); }, fields_);
    }
    // The same as a condition, in brackets; false, never NULL, where a field is NULL.
    std::string sql() const {
        std::string condition;
        const auto add = [&](const auto& field) {
            condition += (condition.empty() ? "(" : " AND ") + std::string(Description<Row>::table) + '.' +
                         columnOf(field.member) + " IS " + literal(field.value);
        };
        std::apply([&](const auto&... field) { (add(field), ...); }, fields_);
        return condition + ')';
    }

  private:
    std::tuple<Holds<Row, T>...> fields_;
};

inline const RowRule isLiving(Holds{&tbl_kazoku::tblkzk_seishikbn, codes::living});

inline const RowRule isInUse(Holds{&tbl_ohaka::tblhak_haiki_kbn, codes::no});
inline const RowRule isDisposed(Holds{&tbl_ohaka::tblhak_haiki_kbn, codes::yes});
// A household holds the grave.
inline bool isLinked(const tbl_ohaka& grave) {
    return grave.tblhak_dnk_no > codes::noHousehold;
}
// A household pays a fee for the grave: it holds it, and it is not disposed. As a condition.
inline std::string paysUpkeep() {
    return "(NOT " + isDisposed.sql() + " AND tbl_ohaka.tblhak_dnk_no > " + literal(codes::noHousehold) + ')';
}

// A notice is due: neither held nor reserved, and not notified yet.
inline const RowRule isOpenForNotice(Holds{&tbl_hohyo::tblhoy_kaiki_s, codes::no},
                                     Holds{&tbl_hohyo::tblhoy_kaiki_rs, codes::no},
                                     Holds{&tbl_hohyo::tblhoy_tsuchi_s, codes::no});
inline const RowRule isHeld(Holds{&tbl_hohyo::tblhoy_kaiki_s, codes::yes});
inline const RowRule isReserved(Holds{&tbl_hohyo::tblhoy_kaiki_rs, codes::yes});
inline const RowRule isNotified(Holds{&tbl_hohyo::tblhoy_tsuchi_s, codes::yes});
// In the reservation book: reserved, and not held yet.
inline const RowRule isAwaited(Holds{&tbl_hohyo::tblhoy_kaiki_rs, codes::yes},
                               Holds{&tbl_hohyo::tblhoy_kaiki_s, codes::no});

// The member that names a row's household by its number.
template <class Row> inline constexpr std::nullptr_t householdNumber = nullptr;
template <> inline constexpr auto householdNumber<tbl_kazoku> = &tbl_kazoku::tblkzk_no1;
template <> inline constexpr auto householdNumber<tbl_kakocho> = &tbl_kakocho::tblkak_no;
template <> inline constexpr auto householdNumber<tbl_ohaka> = &tbl_ohaka::tblhak_dnk_no;
template <> inline constexpr auto householdNumber<tbl_hohyo> = &tbl_hohyo::tblhoy_no;

using Households = Table<tbl_danka, std::int16_t, std::int16_t>;

// The household of a row is that of its number which is no branch.
inline bool seekHousehold(Households& households, std::int16_t number) {
    return households.seek(Seek::equal, number, codes::mainHousehold);
}
inline std::optional<tbl_danka> findHousehold(Database& database, std::int16_t number) {
    return find(database, idxdnk_no, number, codes::mainHousehold);
}
// The same as the condition of a join with tbl_danka.
template <class Row> std::string householdSql() {
    std::string condition = "(tbldnk_no1 = ";
    condition += columnOf(householdNumber<Row>);
    return condition + " AND tbldnk_no2 = " + literal(codes::mainHousehold) + ')';
}
// Rows whose number is no household's, nor a branch's.
template <class Row> std::string lostSql() {
    return columnOf(householdNumber<Row>) + std::string(" NOT IN (SELECT tbldnk_no1 FROM tbl_danka)");
}

} // namespace store
