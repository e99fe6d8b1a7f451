#pragma once

#include "desk/desk.h"
#include "desk/form.h"

#include <QString>

#include <algorithm>
#include <deque>
#include <functional>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

namespace desk {

inline constexpr int pageRows = 30;

template <class Row> struct ListColumn {
    QString header;
    int twips = 0;
    std::function<QString(const Row&)> cell;
    Align align = Align::left;
    Align headerAlign = Align::left;
};

template <class Row> std::vector<GridColumn> gridColumns(const std::vector<ListColumn<Row>>& columns) {
    std::vector<GridColumn> all;
    for (const auto& column : columns)
        all.push_back({column.header, column.twips, column.align, column.headerAlign});
    return all;
}

// A column of ticks, which stands behind the others. Which rows are ticked is the form's to know, by their keys: it
// holds across pages.
template <class Row> struct TickColumn {
    QString header;
    std::function<std::optional<bool>(const Row&)> isTicked; // nothing: the row cannot be ticked
    std::function<void(const Row&, Desk&)> turn;             // a click on it; says why where the row cannot be ticked
};

// All that tells one list screen from another, the selection apart.
template <class Row, class Key> struct ListDescription {
    QString title;   // of every message of the list.
    QString nothing; // shown when no record lies at or after the position; empty: nothing is said
    std::vector<ListColumn<Row>> columns;
    std::vector<TickColumn<Row>> ticks = {};
    std::function<Key(const Row&)> key;
    // The key without what tells rows of one place apart. The page after a page begins with the first row at the place
    // of its last one; where they share one place throughout, with that last row itself, so that the list goes on.
    // Absent where the key has no such part.
    std::function<Key(const Key&)> place = {};
    std::function<bool(const Row&)> listed = {}; // rows it refuses are passed over and use no row of the page
    // Completes the 1 to 30 rows of a page with what other tables know, after the selection has been released.
    std::function<void(std::vector<Row>&, Desk&)> complete = {};
    // Is told the rows of each page before it is shown.
    std::function<void(const std::vector<Row>&)> shown = {};
    // Whether the file still holds the row; asked at each fill of the one selected, which is let go when it does not.
    std::function<bool(const Row&)> exists = {};
    // Whether a row is still to come on this day: the first of them on a page is scrolled into sight.
    std::function<bool(const Row&, QDate)> due = {};
    std::size_t tableSlots = 10; // of each page table
    QString outOfRange = QStringLiteral("有功範囲外を指定しています。やり直して下さい");
};

// Counted from 1; 0 where none is due.
template <class Row, class Due> int firstDue(const std::vector<Row>& rows, const Due& due, QDate today) {
    const auto first = std::ranges::find_if(rows, [&](const Row& row) { return due(row, today); });
    return first == rows.end() ? 0 : static_cast<int>(first - rows.begin()) + 1;
}

// A selection shown thirty rows a page. Between pages only key values are held: every fill reads anew, from the first
// record at or after the position. Each page after the first begins with the last row of the page before.
//
// `Key` holds the sort fields that the position is searched by and needs `==` only.
template <class Row, class Key> class PagingList {
  public:
    // Is handed the rows of a selection in order; false: no more are wanted.
    using Take = std::function<bool(Row)>;
    // Hands over the records from the first at or after the key on, until refused or at the end. Returns false when
    // there is no such record. Whatever it opens it releases before it returns.
    using Source = std::function<bool(const Key&, const Take&)>;

    PagingList(ListDescription<Row, Key> description, Key start)
        : description_(std::move(description)), start_(start), position_(std::move(start)),
          starts_(description_.tableSlots), ends_(description_.tableSlots), startNumbers_(description_.tableSlots) {
        for (const TickColumn<Row>& ticks : description_.ticks) {
            const auto cell = [isTicked = ticks.isTicked](const Row& row) {
                const std::optional<bool> state = isTicked(row);
                return !state ? noTick : *state ? tickOn : tickOff;
            };
            description_.columns.push_back({ticks.header, 900, cell, Align::center, Align::center});
        }
    }

    // Columns and headers, no rows, no highlight colour.
    void setUp(Grid& grid) const {
        grid.columns = gridColumns(description_.columns);
        grid.tickColumns.clear();
        for (std::size_t at = 0; at < description_.ticks.size(); ++at)
            grid.tickColumns.push_back(static_cast<int>(firstTicks() + at));
        grid.rows.clear();
        grid.highlighted = grid.inSight = 0;
    }

    // Sets where the list begins and puts the position there.
    void setStart(Key start) {
        start_ = std::move(start);
        position_ = start_;
    }

    void setPosition(Key position) { position_ = std::move(position); }

    void clearTables() {
        starts_.assign(starts_.size(), std::nullopt);
        ends_.assign(ends_.size(), std::nullopt);
        std::ranges::fill(startNumbers_, 0);
    }

    // Forgets the pages seen and fills the first one.
    bool showFirstPage(const Source& source, Grid& grid, Desk& desk) {
        return keepingPlace([&] {
            clearTables();
            position_ = start_;
            return fillFrom(position_, 1, source, grid, desk);
        });
    }

    // Fills the page that begins at the position's place; a page of one place is filled again. Returns false, with
    // everything as it was, when no record lies there; what the source throws leaves everything as it was, too. The
    // user's selection stays unless its row is gone. What was known of the rows' numbers is forgotten.
    bool fill(const Source& source, Grid& grid, Desk& desk) {
        if (!fillFrom(isOfOnePlace() ? description_.key(rows_.front()) : place(), 0, source, grid, desk))
            return false;
        std::ranges::fill(startNumbers_, 0);
        firstNumber_ = 0;
        return true;
    }

    // Forgets the pages seen and fills the page from the key on, the first one where no record lies there any more.
    // Where the list has none at all the grid is emptied; nothing is said of it.
    void fillFromKey(const Key& from, const Source& source, Grid& grid, Desk& desk) {
        keepingPlace([&] {
            clearTables();
            if (!(from == start_) && fillFrom(from, 0, source, grid, desk, Nothing::silent)) {
                firstNumber_ = 0;
                std::ranges::fill(startNumbers_, 0);
            } else if (!fillFrom(start_, 1, source, grid, desk, Nothing::silent)) {
                setUp(grid);
                rows_.clear();
                rowCounter_ = 0;
                position_ = start_;
            }
            return true;
        });
    }

    // Returns false when no record lies ahead, which is told.
    bool nextPage(const Source& source, Grid& grid, Desk& desk) { return isAtEnd() || turn(source, grid, desk); }

    // On a page beyond the page tables the position stays, so that the list moves forward.
    void previousPage(const Source& source, Grid& grid, Desk& desk) {
        const auto here = std::ranges::find_if(ends_, [&](const Slot& slot) { return !slot || *slot == position_; });
        if (here == ends_.end()) {
            turn(source, grid, desk);
            return;
        }
        const auto before = here - ends_.begin() - 1;
        const bool first = !*here || before < 0 || !starts_[static_cast<std::size_t>(before)];
        keepingPlace([&] {
            position_ = first ? start_ : *starts_[static_cast<std::size_t>(before)];
            // That the list has nothing was said when it was asked for.
            return fillFrom(position_, first ? 1 : startNumbers_[static_cast<std::size_t>(before)], source, grid, desk,
                            !*here && toldNothing_ ? Nothing::silent : Nothing::told);
        });
    }

    // The page before the one shown, however many were turned: where the page tables do not know it, the list is read
    // from its start.
    void pageBefore(const Source& source, Grid& grid, Desk& desk) {
        if (rows_.empty() || std::find(ends_.begin() + 1, ends_.end(), Slot(position_)) != ends_.end()) {
            previousPage(source, grid, desk);
            return;
        }
        std::deque<Key> before;
        int number = 0;
        bool here = false;
        eachListed(source, [&](const Row& row) {
            const Key key = description_.key(row);
            // The first rows shown may have left the list.
            here = std::ranges::any_of(rows_, [&](const Row& shown) { return description_.key(shown) == key; });
            if (here)
                return false;
            before.push_back(key);
            ++number;
            if (before.size() == pageRows)
                before.pop_front();
            return true;
        });
        if (!here || before.empty())
            showFirstPage(source, grid, desk);
        else
            fillFrom(before.front(), number - static_cast<int>(before.size()) + 1, source, grid, desk);
    }

    // The rows of the whole list from its start on, completed as those of a page are.
    std::vector<Row> allRows(const Source& source, Desk& desk) const {
        std::vector<Row> all;
        eachListed(source, [&](Row row) {
            all.push_back(std::move(row));
            return true;
        });
        if (!description_.complete)
            return all;
        std::vector<Row> page;
        for (auto from = all.begin(); from != all.end();) {
            const auto to = from + std::min<std::ptrdiff_t>(pageRows, all.end() - from);
            page.assign(std::make_move_iterator(from), std::make_move_iterator(to));
            description_.complete(page, desk);
            from = std::ranges::move(page, from).out;
        }
        return all;
    }

    QStringList cells(const Row& row) const {
        QStringList cells;
        for (const auto& column : description_.columns)
            cells.push_back(column.cell(row));
        return cells;
    }

    // How many rows the whole list has; reads each of them.
    int count(const Source& source) const {
        int rows = 0;
        eachListed(source, [&](const Row&) { return ++rows > 0; });
        return rows;
    }

    // Number of the first row shown in the whole list, from 1; 0: not known, or nothing is shown.
    int firstNumber() const { return rows_.empty() ? 0 : firstNumber_; }

    // Finds that number by reading the rows before; 0 when the row is gone.
    void findFirstNumber(const Source& source) {
        firstNumber_ = 0;
        if (rows_.empty())
            return;
        int number = 0;
        eachListed(source, [&](const Row& row) {
            ++number;
            if (description_.key(row) == description_.key(rows_.front()))
                firstNumber_ = number;
            return firstNumber_ == 0;
        });
    }

    // Takes the click that the grid reports. In range: highlights the row, copies it as the selection and
    // returns it; otherwise says so, remembers the click only and returns nullptr.
    const Row* click(Grid& grid, Desk& desk) {
        clickedRow_ = grid.clickedRow;
        if (!clickInRange()) {
            desk.notify(description_.outOfRange, description_.title);
            return nullptr;
        }
        highlightedRow_ = grid.highlighted = clickedRow_;
        selection_ = rows_[static_cast<std::size_t>(clickedRow_ - 1)];
        return &*selection_;
    }

    // The click that was taken last was on a tick: turns it over.
    void turnTick(Grid& grid, Desk& desk) const {
        const auto column = std::ranges::find(grid.tickColumns, grid.clickedColumn);
        if (column == grid.tickColumns.end() || !clickInRange())
            return;
        description_.ticks[static_cast<std::size_t>(column - grid.tickColumns.begin())].turn(
            rows_[static_cast<std::size_t>(clickedRow_ - 1)], desk);
        showTicks(grid);
    }
    // Shows the ticks of the rows shown as they are now.
    void showTicks(Grid& grid) const {
        for (std::size_t row = 0; row < rows_.size(); ++row)
            for (const int column : grid.tickColumns)
                grid.rows[row][column] = description_.columns[static_cast<std::size_t>(column)].cell(rows_[row]);
    }

    // The row as it was when it was clicked, as long as the last click lies within the rows now shown; else nullptr.
    // Paging and refilling change it only by letting a row go that exists no more.
    const Row* selected() const { return selection_ && clickInRange() ? &*selection_ : nullptr; }

    const Key& start() const { return start_; }
    // Key of the last row written; before any fill, where the list begins.
    const Key& position() const { return position_; }
    // Rows read by the last fill: 31 when more follow than the page holds.
    int rowCounter() const { return rowCounter_; }
    int rowsShown() const { return static_cast<int>(rows_.size()); }
    // Last row highlighted, 0 = none; the grid itself loses the colour at every fill.
    int highlightedRow() const { return highlightedRow_; }
    const QString& title() const { return description_.title; }
    const std::vector<Row>& rows() const { return rows_; } // of the page shown
    Key key(const Row& row) const { return description_.key(row); }
    // Whether no page follows the one shown.
    bool isAtEnd() const { return std::ranges::find(ends_, Slot(position_)) != ends_.end() && rowCounter_ < pageRows; }

  private:
    using Slot = std::optional<Key>;
    enum class Nothing { told, silent };

    // The position without what tells the rows of its place apart.
    Key place() const { return description_.place ? description_.place(position_) : position_; }

    // Whether the page that ends at the position shows rows of one place only.
    bool isOfOnePlace() const {
        return description_.place && !rows_.empty() && position_ == description_.key(rows_.back()) &&
               description_.place(description_.key(rows_.front())) == place();
    }

    // Forward to the page that follows the one shown.
    bool turn(const Source& source, Grid& grid, Desk& desk) {
        return fillFrom(isOfOnePlace() ? position_ : place(), 0, source, grid, desk);
    }

    // What the source throws leaves the place in the list as it was.
    template <class Fill> bool keepingPlace(const Fill& fill) {
        const std::tuple before(position_, starts_, ends_, startNumbers_);
        try {
            return fill();
        } catch (...) {
            std::tie(position_, starts_, ends_, startNumbers_) = before;
            throw;
        }
    }

    // Hands over the rows listed, from the key on, until refused.
    bool eachListed(const Source& source, const Key& from, const Take& take) const {
        return source(
            from, [&](Row row) { return (description_.listed && !description_.listed(row)) || take(std::move(row)); });
    }
    bool eachListed(const Source& source, const Take& take) const { return eachListed(source, start_, take); }

    // number: of the page's first row in the whole list; 0 where it follows from the page shown, or is not known.
    bool fillFrom(const Key& from, int number, const Source& source, Grid& grid, Desk& desk,
                  Nothing nothing = Nothing::told) {
        std::vector<Row> page;
        bool more = false;
        const bool found = eachListed(source, from, [&](Row row) {
            more = page.size() == pageRows;
            if (!more)
                page.push_back(std::move(row));
            return !more;
        });
        if (selection_ && description_.exists && !description_.exists(*selection_))
            selection_.reset();
        if (!found) {
            toldNothing_ = true;
            if (nothing == Nothing::told && !description_.nothing.isEmpty())
                desk.notify(description_.nothing, description_.title);
            return false;
        }
        if (description_.complete && !page.empty())
            description_.complete(page, desk);
        if (description_.shown)
            description_.shown(page);

        setUp(grid);
        for (const Row& row : page)
            grid.rows.push_back(cells(row));
        if (description_.due)
            grid.inSight = firstDue(page, description_.due, desk.today());
        toldNothing_ = false;
        firstNumber_ = number ? number : numberFromPageShown(page);
        rows_ = std::move(page);
        rowCounter_ = rowsShown() + (more ? 1 : 0);
        if (!rows_.empty()) {
            const auto slot = record(starts_, description_.key(rows_.front()));
            if (slot < startNumbers_.size())
                startNumbers_[slot] = firstNumber_;
            position_ = description_.key(rows_.back());
        }
        record(ends_, position_);
        return true;
    }

    // A page begins with a row of the one before.
    int numberFromPageShown(const std::vector<Row>& page) const {
        if (page.empty() || firstNumber_ == 0)
            return 0;
        const auto same =
            std::ranges::find(rows_, description_.key(page.front()), [this](const Row& row) { return key(row); });
        return same == rows_.end() ? 0 : firstNumber_ + static_cast<int>(same - rows_.begin());
    }

    std::size_t firstTicks() const { return description_.columns.size() - description_.ticks.size(); }

    bool clickInRange() const { return clickedRow_ >= 1 && clickedRow_ <= rowsShown(); }

    // Gives the slot that holds the key now; beyond the last one when all are taken.
    static std::size_t record(std::vector<Slot>& table, const Key& key) {
        const auto slot = std::ranges::find_if(table, [&](const Slot& s) { return !s || *s == key; });
        if (slot != table.end())
            *slot = key;
        return static_cast<std::size_t>(slot - table.begin());
    }

    ListDescription<Row, Key> description_;
    Key start_;
    Key position_;
    std::vector<Slot> starts_;
    std::vector<Slot> ends_;
    std::vector<int> startNumbers_; // of the rows whose keys are in starts_; 0 not known
    std::vector<Row> rows_;
    int firstNumber_ = 0;
    std::optional<Row> selection_;
    int rowCounter_ = 0;
    int clickedRow_ = 0;
    int highlightedRow_ = 0;
    bool toldNothing_ = false; // the last search found no record
};

} // namespace desk
