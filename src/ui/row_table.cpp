#include "ui/row_table.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

namespace ui {

namespace {

// The widths of the columns were chosen for text of this size.
constexpr double designPointSize = 9.0;
constexpr int twipsAnInch = 1440;
constexpr int defaultTwips = 1600;

} // namespace

RowTable::RowTable(QWidget* parent) : QTableView(parent) {
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setSectionsClickable(true);
    horizontalHeader()->setHighlightSections(false);
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) { clickRow(0, column); });
}

void RowTable::clickRow(int row, int column) {
    if (clickedAt)
        clickedAt(row, column);
}

void RowTable::setColumnTwips(const std::vector<int>& twips) {
    const double scale = std::max(1.0, font().pointSizeF() / designPointSize) * logicalDpiX() / twipsAnInch;
    for (int at = 0; at < static_cast<int>(twips.size()); ++at) {
        const int width = twips[static_cast<std::size_t>(at)] ? twips[static_cast<std::size_t>(at)] : defaultTwips;
        const QString heading = model()->headerData(at, Qt::Horizontal).toString();
        setColumnWidth(at, std::max(static_cast<int>(width * scale), fontMetrics().horizontalAdvance(heading) + 16));
    }
    updateGeometry();
}

QSize RowTable::sizeHint() const {
    const int rows = verticalHeader()->defaultSectionSize() * preferredRows_;
    return {horizontalHeader()->length() + verticalScrollBar()->sizeHint().width() + 2 * frameWidth(),
            horizontalHeader()->sizeHint().height() + rows + horizontalScrollBar()->sizeHint().height()};
}

QSize RowTable::minimumSizeHint() const {
    return {200, horizontalHeader()->sizeHint().height() + verticalHeader()->defaultSectionSize() * 5};
}

void RowTable::mousePressEvent(QMouseEvent* event) {
    QTableView::mousePressEvent(event);
    if (event->button() != Qt::LeftButton)
        return;
    // The pointer's height picks the row, also to the right of the last column.
    const int row = rowAt(event->position().toPoint().y());
    const int column = columnAt(event->position().toPoint().x());
    clickRow(row >= 0 ? row + 1 : model()->rowCount() + 1, std::max(column, 0));
}

void RowTable::mouseDoubleClickEvent(QMouseEvent* event) {
    const int row = rowAt(event->position().toPoint().y());
    if (event->button() == Qt::LeftButton && row >= 0 && row < filledRows() && openRow)
        openRow();
}

void RowTable::keyPressEvent(QKeyEvent* event) {
    const int here = pickedRow();
    switch (event->key()) {
    case Qt::Key_Down:
        if (here < filledRows())
            clickRow(here + 1, 0);
        return;
    case Qt::Key_Up:
        if (here > 1)
            clickRow(here - 1, 0);
        return;
    case Qt::Key_PageDown:
    case Qt::Key_PageUp:
        if (!turnPage)
            break;
        turnPage(event->key() == Qt::Key_PageDown);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (here >= 1 && here <= filledRows() && openRow)
            openRow();
        return;
    default:
        break;
    }
    QTableView::keyPressEvent(event);
}

} // namespace ui
