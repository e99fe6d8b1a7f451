#pragma once

#include "printing/listing.h"
#include "store/database.h"
#include "values/numbers.h"

#include <QDate>
#include <QString>
#include <QStringList>

#include <functional>
#include <span>
#include <vector>

// Reports: lists on paper that no screen shows. Each is described in a file of its own and named in reports.cpp.
namespace reports {

// What a report is made for. Numbers are 0 where they were not asked for or left empty.
struct Wish {
    int year = 0;  // 1500 to 9999
    int month = 0; // 1 to 12
    int day = 0;   // 1 to 31
    int kind = 0;  // of the report's kinds, from 0
};

enum class Box { unused, optional, needed };

struct Report {
    QString title;
    Box year = Box::unused;
    Box month = Box::unused;
    Box day = Box::unused;
    QStringList kinds = {}; // how it can be arranged; empty where there is one way only
    // What the boxes show first.
    std::function<Wish(QDate today)> preset = [](QDate) { return Wish{}; };
    // Reads the register and tells nothing: what is missing stands in the notes of the list.
    std::function<printing::Listing(store::Database&, const Wish&)> make;
};

// The reports in the order of the list.
const std::vector<Report>& reports();

template <class Row> struct Column {
    using Cell = std::function<QString(const Row&)>;
    using Amount = std::function<qint64(const Row&)>;

    Column(QString name, Cell text, desk::Align side = desk::Align::left, Amount yen = {})
        : heading(std::move(name)), cell(std::move(text)), align(side), amount(std::move(yen)) {}

    QString heading;
    Cell cell;
    desk::Align align;
    Amount amount; // in yen, summed up below each group and below the table; absent: none
};

template <class Row> struct Groups {
    std::function<bool(const Row&, const Row&)> same; // rows of one group follow one another
    std::function<QString(std::span<const Row>)> heading;
};

namespace detail {

template <class Row>
QStringList sums(const std::vector<Column<Row>>& columns, std::span<const Row> rows, const QString& name) {
    QStringList cells;
    bool any = false;
    for (const Column<Row>& column : columns) {
        qint64 sum = 0;
        if (column.amount)
            for (const Row& row : rows)
                sum += column.amount(row);
        cells << (column.amount ? values::moneyText(sum) : QString());
        any = any || column.amount;
    }
    if (!any)
        return {};
    cells[0] = name;
    return cells;
}

} // namespace detail

// The rows, which come in order, as a table. Without groups all rows are one. A column with an amount is not the first.
template <class Row>
printing::ListingTable tableOf(const std::vector<Row>& rows, const std::vector<Column<Row>>& columns,
                               const Groups<Row>& groups = {}) {
    printing::ListingTable table;
    for (const Column<Row>& column : columns)
        table.columns.push_back({column.heading, column.align});
    for (std::size_t first = 0; first < rows.size();) {
        std::size_t end = groups.same ? first + 1 : rows.size();
        while (end < rows.size() && groups.same(rows[first], rows[end]))
            ++end;
        const std::span<const Row> group(rows.begin() + static_cast<std::ptrdiff_t>(first), end - first);
        printing::ListingGroup& listed = table.groups.emplace_back();
        if (groups.heading)
            listed.heading = groups.heading(group);
        listed.rows.reserve(group.size());
        for (const Row& row : group) {
            QStringList& cells = listed.rows.emplace_back();
            cells.reserve(static_cast<qsizetype>(columns.size()));
            for (const Column<Row>& column : columns)
                cells << column.cell(row);
        }
        if (const QStringList sums = detail::sums(columns, group, QStringLiteral("小計"));
            groups.same && !sums.isEmpty())
            listed.sums = {sums};
        first = end;
    }
    if (const QStringList sums = detail::sums(columns, std::span<const Row>(rows), QStringLiteral("合計"));
        !sums.isEmpty())
        table.sums = {sums};
    return table;
}

// How many rows of a table bear a date that is none.
qint64 unreadableDates(store::Database& database, const std::string& table, const std::string& column);

// A note that tells how many there are; nothing where there are none. "%1" stands for the number.
inline void note(printing::Listing& list, const QString& text, qint64 count) {
    if (count > 0)
        list.notes << text.arg(count);
}

} // namespace reports
