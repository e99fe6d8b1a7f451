#include "ui/grid_view.h"

#include <utility>

namespace ui {

void GridView::show(const desk::Grid& grid) {
    const desk::Grid former = std::exchange(grid_, grid);
    if (former.columns != grid.columns)
        setColumns(grid.columns);
    else if (former.rows != grid.rows || former.blankRows != grid.blankRows)
        showRows();
    else if (former.highlighted != grid.highlighted)
        showPicked(former.highlighted);
}

} // namespace ui
