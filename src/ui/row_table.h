#pragma once

#include <QTableView>

#include <functional>

namespace ui {

// A read-only table under a fixed header in which the user picks whole rows, by mouse or keyboard. Rows and columns are
// reported as in the register: row 0 is the header, data rows from 1, the empty ground below counts as the row after
// the last one; columns from 0. Up and Down pick the neighbour of the picked row and stop at the ends in silence.
class RowTable : public QTableView {
  public:
    explicit RowTable(QWidget* parent = nullptr);

    std::function<void(int row, int column)> clickedAt;
    std::function<void()> openRow;              // double click or Enter on the picked row
    std::function<void(bool forward)> turnPage; // Page Down, Page Up; absent: the view scrolls

    // Rows that bear a record, and the one picked last (0 none).
    virtual int filledRows() const = 0;
    virtual int pickedRow() const = 0;

    // A click as the mouse would make it.
    void clickRow(int row, int column);

    // Widths in twips (1/1440 inch, 0 the default), laid out through the logical resolution and the size of the font;
    // no column is narrower than its heading.
    void setColumnTwips(const std::vector<int>& twips);

    // Rows that the size hint makes room for.
    void setPreferredRows(int rows) { preferredRows_ = rows; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    int preferredRows_ = 17;
};

} // namespace ui
