#pragma once

#include "desk/deletion.h"
#include "desk/desk.h"
#include "store/schema.h"

#include <QDate>
#include <QString>

#include <array>

// The memorials that fall due for one deceased: 法要登録 writes them, 法要削除 removes them.
namespace memorials {

enum class Unit { days, years };

struct Anniversary {
    const char16_t* label; // as tblhoy_kaiki_mei stores it
    Unit unit;
    int amount; // from the date of death
};

inline constexpr std::array<Anniversary, 14> AnniversaryTable{{
    {u"49日", Unit::days, 48},
    {u"100ｹ日", Unit::days, 99},
    {u"1周忌", Unit::years, 1},
    {u"3回忌", Unit::years, 2},
    {u"7回忌", Unit::years, 6},
    {u"13回忌", Unit::years, 12},
    {u"17回忌", Unit::years, 16},
    {u"23回忌", Unit::years, 22},
    {u"27回忌", Unit::years, 26},
    {u"33回忌", Unit::years, 32},
    {u"50回忌", Unit::years, 49},
    {u"100回忌", Unit::years, 99},
    {u"200回忌", Unit::years, 199},
    {u"300回忌", Unit::years, 299},
}};

// The day an anniversary falls on; a 29 February counted into a common year gives the 28th.
QDate anniversaryDate(const Anniversary& anniversary, QDate death);

// Writes the fourteen memorials of an entry of the death register, all at once: when one cannot be written, none is.
// One that exists is left as it is and told of, in table order, after the others are stored.
void RegisterSchedule(const store::tbl_kakocho& entry, desk::Desk& desk);

// Deletes the memorials that bear the entry's keys (household number and name, secular name), whatever their state, up
// to the first in date order that bears another household name. Silent when there is none.
void DeleteMemorials(const store::tbl_kakocho& entry, desk::Deletion& deletion);

} // namespace memorials
