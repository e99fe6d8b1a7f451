#pragma once

#include "desk/form.h"

#include <QTableView>

#include <functional>

namespace ui {

// Shows a desk::Grid: a fixed header row over data rows, blank ones included. Clicks are reported with row 0 for the
// header and the row after the last one for the empty ground below. Up and Down move the highlight as a click on that
// row would and stop at the ends in silence.
class GridView : public QTableView {
  public:
    explicit GridView(QWidget* parent = nullptr);

    void show(const desk::Grid& grid);

    std::function<void(int row, int column)> clickedAt;
    std::function<void()> openRow;              // double click or Enter on a filled row
    std::function<void(bool forward)> turnPage; // Page Down, Page Up

    // A click as the mouse would make it, for keyboard and tests.
    void clickRow(int row, int column);
    // Rows that the size hint makes room for.
    void setPreferredRows(int rows) { preferredRows_ = rows; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    class Model;
    void layOutColumns(const desk::Grid& grid);

    Model* model_;
    int preferredRows_ = 14;
};

} // namespace ui
