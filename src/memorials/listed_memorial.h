#pragma once

#include "calendar/eras.h"
#include "desk/desk.h"
#include "desk/form.h"
#include "desk/list_form.h"
#include "desk/screen_context.h"
#include "store/database.h"
#include "store/schema.h"

#include <QDate>

// What the lists of memorials share.
namespace memorials {

// A memorial with what its list shows beside it: dates in era form, the household.
struct ListedMemorial : store::tbl_hohyo {
    QString scheduledEra = {};
    QString reservedEra = {}; // of reserved ones
    QString heldEra = {};     // of held ones
    QString noticeEra = {};   // of notified ones
    std::optional<store::tbl_danka> household = {};
};

// What orders memorials of one place in a list: together they are a memorial's key.
struct MemorialTie {
    QString deceased; // secular name
    QDate scheduled;
    std::int16_t household = 0;

    static MemorialTie of(const store::tbl_hohyo& row);
    bool operator==(const MemorialTie&) const = default;
    // In the register's order: names by code point.
    bool operator<(const MemorialTie& other) const;
};

// Whether the register still holds the memorial.
bool memorialExists(const store::tbl_hohyo& row);

// Whether it is still to come: not held, and scheduled or booked for the day or later.
bool isDue(const store::tbl_hohyo& row, QDate today);

// "AM 10：30", a full minute as "00".
QString startTimeText(const store::tbl_hohyo& row);

void fillEraTexts(calendar::EraTexts& eras, ListedMemorial& row);

// Completes a page with its era texts and the household of every row; tells, under the title, of each household that
// cannot be found.
void fillEraTextsAndHouseholds(std::vector<ListedMemorial>& page, const QString& title, desk::Desk& desk);

// Clears the record and publishes household, deceased and memorial of a row.
void publishMemorial(const store::tbl_hohyo& row, desk::ScreenContext& context);

using ListedRow = const ListedMemorial&;
using MemorialColumn = desk::ListColumn<ListedMemorial>;

// What a column shows of the row's household; empty where it was not found.
std::function<QString(ListedRow)> householdText(QString store::tbl_danka::*field);

} // namespace memorials
