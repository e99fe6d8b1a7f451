#pragma once

#include "desk/form.h"
#include "ui/row_table.h"

namespace ui {

// Shows a desk::Grid, its blank rows included. Where the columns are wider than the view, the ticks stand in front of
// the others, so that a row is ticked and read without scrolling.
class GridView : public RowTable {
  public:
    using RowTable::RowTable;

    void show(const desk::Grid& grid);

    int filledRows() const override { return static_cast<int>(grid_.rows.size()); }
    int pickedRow() const override { return grid_.highlighted; }
    int shownRows() const override { return std::max(grid_.blankRows, filledRows()); }
    int rowInSight() const override { return grid_.inSight; }
    QString cell(int row, int column) const override { return grid_.cell(row, column); }

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void updateGeometries() override;

  private:
    desk::Grid grid_;
};

} // namespace ui
