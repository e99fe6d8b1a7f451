#include "ui/grid_view.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>
#include <utility>

namespace ui {

namespace {

// Whether two grids of the same columns differ in ticks only, the highlight apart.
bool differInTicksOnly(const desk::Grid& former, const desk::Grid& grid) {
    if (grid.tickColumns.empty() || former.blankRows != grid.blankRows)
        return false;
    return std::ranges::equal(former.rows, grid.rows, [&](QStringList one, const QStringList& other) {
        for (const int column : grid.tickColumns)
            one[column] = other[column];
        return one == other;
    });
}

} // namespace

void GridView::show(const desk::Grid& grid) {
    const desk::Grid former = std::exchange(grid_, grid);
    const bool freshRows = former.rows != grid.rows || former.blankRows != grid.blankRows;
    if (former.columns != grid.columns) {
        setColumns(grid.columns);
    } else if (freshRows && !differInTicksOnly(former, grid)) {
        showRows();
    } else {
        if (freshRows)
            viewport()->update(); // a list whose ticks change stays where it is
        if (former.highlighted != grid.highlighted)
            showPicked(former.highlighted);
    }
}

void GridView::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space || grid_.tickColumns.empty() || grid_.highlighted == 0) {
        RowTable::keyPressEvent(event);
        return;
    }
    const auto first = std::ranges::find_if(
        grid_.tickColumns, [this](int column) { return cell(grid_.highlighted, column) != desk::noTick; });
    const bool last = event->modifiers().testFlag(Qt::ShiftModifier) || first == grid_.tickColumns.end();
    clickRow(grid_.highlighted, last ? grid_.tickColumns.back() : *first);
}

// Runs whenever the view or a column has got another width.
void GridView::updateGeometries() {
    RowTable::updateGeometries();
    QHeaderView& header = *horizontalHeader();
    if (header.count() != std::ssize(grid_.columns))
        return;
    const bool inFront = header.length() > viewport()->width();
    // The outermost one first: it moves those between.
    const int ticks = static_cast<int>(grid_.tickColumns.size());
    for (int i = 0; i < ticks; ++i) {
        const int column = grid_.tickColumns[static_cast<std::size_t>(inFront ? i : ticks - 1 - i)];
        const int place = inFront ? i : header.count() - 1 - i;
        if (header.visualIndex(column) != place)
            header.moveSection(header.visualIndex(column), place);
    }
}

// The second click on a tick is one more click, and opens nothing.
void GridView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (std::ranges::count(grid_.tickColumns, columnAt(event->position().toPoint().x())) > 0)
        mousePressEvent(event);
    else
        RowTable::mouseDoubleClickEvent(event);
}

} // namespace ui
