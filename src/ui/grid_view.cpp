#include "ui/grid_view.h"

#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace ui {

namespace {

// Whether two grids of the same columns differ in ticks only, the highlight apart.
bool differInTicksOnly(const desk::Grid& former, const desk::Grid& grid) {
    if (grid.tickColumn < 0 || former.blankRows != grid.blankRows)
        return false;
    return std::ranges::equal(former.rows, grid.rows, [&](QStringList one, QStringList other) {
        one.removeAt(grid.tickColumn);
        other.removeAt(grid.tickColumn);
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
    if (event->key() == Qt::Key_Space && grid_.tickColumn >= 0 && grid_.highlighted > 0)
        clickRow(grid_.highlighted, grid_.tickColumn);
    else
        RowTable::keyPressEvent(event);
}

} // namespace ui
