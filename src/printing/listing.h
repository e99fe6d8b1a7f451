#pragma once

#include "desk/form.h"

#include <QString>
#include <QStringList>

#include <variant>
#include <vector>

// A list to be printed as a value: what stands on its pages, not where.
namespace printing {

struct ListingColumn {
    QString heading = {};
    desk::Align align = desk::Align::left;
};

// Rows under one heading. Each row, and each line of sums, has a cell a column.
struct ListingGroup {
    QString heading = {}; // empty: none
    std::vector<QStringList> rows = {};
    std::vector<QStringList> sums = {};
};

struct ListingTable {
    QString heading = {}; // above the table; empty: none
    std::vector<ListingColumn> columns = {};
    std::vector<ListingGroup> groups = {};
    std::vector<QStringList> sums = {};
};

struct CalendarDay {
    QString label; // empty: no day of the month
    QStringList entries = {};
};

// A month on one page. A day shows as many entries as it has room for and how many more there are: a table that lists
// them all goes with it.
struct ListingCalendar {
    QStringList weekdays;          // seven headings
    std::vector<CalendarDay> days; // whole weeks
};

using ListingBlock = std::variant<ListingTable, ListingCalendar>;

enum class Type { normal, large };           // 10 points; 14 points, to be read on a wall
enum class Lie { upright, across, fitting }; // A4; fitting: upright where the columns fit there

struct Listing {
    QString title = {};
    QString range = {}; // what was asked for; on every page, as title and date are
    QString date = {};  // when it was made
    Type type = Type::normal;
    Lie lie = Lie::fitting;
    std::vector<ListingBlock> blocks = {};
    QStringList notes = {}; // below everything
    QString nothing = {};   // why there is nothing to print; empty where there is
};

} // namespace printing
