#pragma once

#include "desk/form.h"

#include <QTableView>

#include <functional>
#include <utility>
#include <vector>

namespace ui {

// A read-only table under a fixed header in which the user picks whole rows, by mouse or keyboard. Rows and columns are
// reported as in the register: row 0 is the header, data rows from 1, the empty ground below counts as the row after
// the last one; columns from 0. Up and Down pick the neighbour of the picked row and stop at the ends in silence. Page
// keys and wheel scroll; where the last row is in sight, they turn the page.
//
// The columns share the width that is there by what they hold, until the user pulls at one.
class RowTable : public QTableView {
  public:
    explicit RowTable(QWidget* parent = nullptr);

    std::function<void(int row, int column)> clickedAt;
    std::function<void()> openRow;              // double click or Enter on the picked row
    std::function<void(bool forward)> turnPage; // the page keys and the wheel have come to its end
    std::function<void()> pulled;               // the user has given a column another width

    // Rows that bear a record, and the one picked last (0 none).
    virtual int filledRows() const = 0;
    virtual int pickedRow() const = 0;
    // Rows shown, blank ones below those that bear a record included.
    virtual int shownRows() const { return filledRows(); }
    virtual QString cell(int row, int column) const = 0; // rows from 1
    // The row that is in sight when the rows have been shown, the first one included where there is room; 0: none.
    virtual int rowInSight() const { return 0; }
    const std::vector<desk::GridColumn>& columns() const { return columns_; }

    // A click as the mouse would make it.
    void clickRow(int row, int column);

    // Takes the place of all columns. Their twips are the widths to begin with for text of 9 points; what is
    // right-aligned is a number, which must not lose its end.
    void setColumns(std::vector<desk::GridColumn> columns);
    // Widths in pixels that hold whatever the columns contain, one for each; where they are of another number, as none
    // are, the columns share the width.
    void useWidths(std::vector<int> widths);
    std::vector<int> widthsShown() const;
    // Shows the rows as they are now, from the first one on or so that rowInSight() is in sight.
    void showRows();
    // Another row than `former` is picked now.
    void showPicked(int former);
    // First and last row wholly in sight; 0 where none is.
    std::pair<int, int> rowsInSight() const;

    // Rows that the size hint makes room for.
    void setPreferredRows(int rows) { preferredRows_ = rows; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    void keyboardSearch(const QString&) override {} // typing picks no row

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    class Model;

    struct Width {
        int start = 0;  // by its twips
        int least = 0;  // with its heading, a whole number or ten characters
        int needed = 0; // with all that it holds or has held
    };
    std::vector<Width> widths() const;
    void measure() const;
    void shareWidth();
    void setWidths(const std::vector<int>& widths);
    std::vector<int> sharedWidths() const;
    void markPicked();
    void keepInSight();
    bool isAtEnd(bool forward) const;
    void movePage(bool forward);
    void turn(bool forward);

    Model* model_;
    std::vector<desk::GridColumn> columns_;
    mutable std::vector<int> needed_; // by the widest contents so far: columns do not jump from page to page
    mutable bool measured_ = false;   // since the rows changed
    int inSight_ = 0;                 // row to be kept in sight until somebody scrolls
    int scrolledTo_ = 0;              // for it
    std::vector<int> wished_;         // widths of the user's
    bool sharing_ = false;            // the program sets widths
    int turning_ = 0;                 // eighths of a degree that the wheel has turned at the end of the page
    int preferredRows_ = 30;
};

} // namespace ui
