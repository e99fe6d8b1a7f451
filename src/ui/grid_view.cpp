#include "ui/grid_view.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

namespace ui {

namespace {

Qt::Alignment alignment(desk::Align align) {
    switch (align) {
    case desk::Align::right:
        return Qt::AlignRight | Qt::AlignVCenter;
    case desk::Align::center:
        return Qt::AlignCenter;
    case desk::Align::left:
        break;
    }
    return Qt::AlignLeft | Qt::AlignVCenter;
}

// The widths of the columns were chosen for text of this size.
constexpr double designPointSize = 9.0;
constexpr int twipsAnInch = 1440;
constexpr int defaultTwips = 1600;

bool sameColumns(const std::vector<desk::GridColumn>& a, const std::vector<desk::GridColumn>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& x, const auto& y) {
        return x.header == y.header && x.twips == y.twips && x.align == y.align && x.headerAlign == y.headerAlign;
    });
}

} // namespace

class GridView::Model : public QAbstractTableModel {
  public:
    using QAbstractTableModel::QAbstractTableModel;

    void set(const desk::Grid& grid) {
        beginResetModel();
        grid_ = grid;
        endResetModel();
    }
    const desk::Grid& grid() const { return grid_; }

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : std::max(grid_.blankRows, static_cast<int>(grid_.rows.size()));
    }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(grid_.columns.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        switch (role) {
        case Qt::DisplayRole:
        case Qt::ToolTipRole:
            return grid_.cell(index.row() + 1, index.column());
        case Qt::TextAlignmentRole:
            return QVariant::fromValue(alignment(column(index.column()).align));
        case Qt::BackgroundRole:
            return grid_.highlighted == index.row() + 1 ? QColor(128, 255, 128) : QVariant();
        case Qt::ForegroundRole:
            return grid_.highlighted == index.row() + 1 ? QColor(0, 0, 0) : QVariant();
        default:
            return {};
        }
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation == Qt::Vertical)
            return {};
        if (role == Qt::DisplayRole)
            return column(section).header;
        if (role == Qt::TextAlignmentRole)
            return QVariant::fromValue(alignment(column(section).headerAlign));
        return {};
    }

  private:
    const desk::GridColumn& column(int at) const { return grid_.columns[static_cast<std::size_t>(at)]; }

    desk::Grid grid_;
};

GridView::GridView(QWidget* parent) : QTableView(parent), model_(new Model(this)) {
    setModel(model_);
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setAlternatingRowColors(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setSectionsClickable(true);
    horizontalHeader()->setHighlightSections(false);
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) { clickRow(0, column); });
}

void GridView::show(const desk::Grid& grid) {
    const desk::Grid& shown = model_->grid();
    const bool freshColumns = !sameColumns(shown.columns, grid.columns);
    const bool freshRows = freshColumns || shown.rows != grid.rows || shown.blankRows != grid.blankRows;
    if (!freshRows && shown.highlighted == grid.highlighted)
        return;
    const int top = rowAt(0);
    model_->set(grid);
    if (freshColumns)
        layOutColumns(grid);
    if (freshRows)
        scrollToTop();
    else if (grid.highlighted > 0) {
        scrollTo(model_->index(std::max(top, 0), 0), QAbstractItemView::PositionAtTop);
        scrollTo(model_->index(grid.highlighted - 1, 0));
    }
}

void GridView::layOutColumns(const desk::Grid& grid) {
    const double scale = std::max(1.0, font().pointSizeF() / designPointSize) * logicalDpiX() / twipsAnInch;
    for (int at = 0; at < model_->columnCount(); ++at) {
        const desk::GridColumn& column = grid.columns[static_cast<std::size_t>(at)];
        const int twips = column.twips ? column.twips : defaultTwips;
        const int header = fontMetrics().horizontalAdvance(column.header) + 16;
        setColumnWidth(at, std::max(static_cast<int>(twips * scale), header));
    }
}

QSize GridView::sizeHint() const {
    const int rows = verticalHeader()->defaultSectionSize() * preferredRows_;
    return {horizontalHeader()->length() + verticalScrollBar()->sizeHint().width() + 2 * frameWidth(),
            horizontalHeader()->sizeHint().height() + rows + horizontalScrollBar()->sizeHint().height()};
}

QSize GridView::minimumSizeHint() const {
    return {200, horizontalHeader()->sizeHint().height() + verticalHeader()->defaultSectionSize() * 5};
}

void GridView::clickRow(int row, int column) {
    if (clickedAt)
        clickedAt(row, column);
}

void GridView::mousePressEvent(QMouseEvent* event) {
    QTableView::mousePressEvent(event);
    if (event->button() != Qt::LeftButton)
        return;
    const QModelIndex at = indexAt(event->position().toPoint());
    clickRow(at.isValid() ? at.row() + 1 : model_->rowCount() + 1, at.isValid() ? at.column() : 0);
}

void GridView::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex at = indexAt(event->position().toPoint());
    if (at.isValid() && at.row() < static_cast<int>(model_->grid().rows.size()) && openRow)
        openRow();
}

void GridView::keyPressEvent(QKeyEvent* event) {
    const int rows = static_cast<int>(model_->grid().rows.size());
    const int here = model_->grid().highlighted;
    switch (event->key()) {
    case Qt::Key_Down:
        if (here < rows)
            clickRow(here + 1, 0);
        return;
    case Qt::Key_Up:
        if (here > 1)
            clickRow(here - 1, 0);
        return;
    case Qt::Key_PageDown:
    case Qt::Key_PageUp:
        if (turnPage)
            turnPage(event->key() == Qt::Key_PageDown);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (here >= 1 && here <= rows && openRow)
            openRow();
        return;
    default:
        QTableView::keyPressEvent(event);
    }
}

} // namespace ui
