#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/list_form.h"
#include "desk/screen_context.h"
#include "store/table.h"

#include <QDate>
#include <QString>

#include <optional>
#include <string>

// What the lists of one household's living and dead share.
namespace family {

struct HouseholdBoxes {
    desk::Text frm21_dankag;
    desk::Text frm12_yubinno;
    desk::Text frm12_jyusho1;
    desk::Text frm12_jyusho2;
    desk::Text frm12_tel;
    desk::Text frm12_chiku;
    desk::Text frm12_bikou;

    // The household whose list this is; number 0 where none was chosen.
    desk::HouseholdBlock household;
};

// Shows the household that was handed over, or else reads that of dnk_no1 and dnk_no2 into boxes and context; tells
// under the title when it is not there.
void showHousehold(HouseholdBoxes& block, desk::ScreenContext& context, desk::Desk& desk, const QString& title);
// Puts the list's household into the context.
void publishShown(const HouseholdBoxes& block, desk::ScreenContext& context);

// Where a page begins: date and name of the last row written.
struct Position {
    QDate date;
    QString name;

    bool operator==(const Position&) const = default;
};

// The names of a table's fields for household number, date and name.
struct ListFields {
    std::string number;
    std::string date;
    std::string name;
};

// Hands over the household's rows in the order of date and name, from the first on whose date and whose name are not
// before the position's; false when there is none. Rows without a date are never reached.
template <class Row, class Take>
bool readFrom(const Position& position, std::int16_t number, const ListFields& fields, QDate Row::*date,
              QString Row::*name, const Take& take) {
    const std::string ofHousehold = "WHERE " + fields.number + " = ? AND ";
    const std::string inOrder = " ORDER BY " + fields.date + " ASC, " + fields.name + " ASC";
    store::Database database;
    const auto first = store::selectAll<Row>(
        database, ofHousehold + fields.date + " >= ? AND " + fields.name + " >= ?" + inOrder + " LIMIT 1", number,
        position.date, position.name);
    if (first.empty())
        return false;
    store::Selection<Row> rows(database, ofHousehold + "(" + fields.date + ", " + fields.name + ") >= (?, ?)" + inOrder,
                               number, first.front().*date, first.front().*name);
    while (rows.next() && take(rows.row())) {
    }
    return true;
}

// 平成20年2月12日 from the four stored fields.
QString eraText(const QString& gname, std::optional<std::int16_t> gyy, std::optional<std::int16_t> gmm,
                std::optional<std::int16_t> gdd);

} // namespace family
