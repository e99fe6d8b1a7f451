#include "ui/grid_view.h"

#include "ui/plain_text.h"

#include <QAbstractTableModel>
#include <QKeyEvent>

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
    // Whether a grid differs from the one shown in ticks only, the highlight apart.
    bool differsInTicksOnly(const desk::Grid& grid) const {
        if (grid.tickColumn < 0 || grid.rows.size() != grid_.rows.size())
            return false;
        return std::equal(grid.rows.begin(), grid.rows.end(), grid_.rows.begin(),
                          [&](QStringList one, QStringList other) {
                              one.removeAt(grid.tickColumn);
                              other.removeAt(grid.tickColumn);
                              return one == other;
                          });
    }
    void tick(const desk::Grid& grid) {
        grid_.rows = grid.rows;
        if (!grid_.rows.empty())
            Q_EMIT dataChanged(index(0, grid.tickColumn),
                               index(static_cast<int>(grid_.rows.size()) - 1, grid.tickColumn));
    }
    void highlight(int row) {
        const int former = std::exchange(grid_.highlighted, row);
        for (const int changed : {former, row}) {
            if (changed > 0)
                Q_EMIT dataChanged(index(changed - 1, 0), index(changed - 1, columnCount() - 1));
        }
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
            return grid_.cell(index.row() + 1, index.column());
        case Qt::ToolTipRole:
            return plainToolTip(grid_.cell(index.row() + 1, index.column()));
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

GridView::GridView(QWidget* parent) : RowTable(parent), model_(new Model(this)) {
    setModel(model_);
}

int GridView::filledRows() const {
    return static_cast<int>(model_->grid().rows.size());
}

int GridView::pickedRow() const {
    return model_->grid().highlighted;
}

void GridView::keyPressEvent(QKeyEvent* event) {
    const desk::Grid& grid = model_->grid();
    if (event->key() == Qt::Key_Space && grid.tickColumn >= 0 && grid.highlighted > 0)
        clickRow(grid.highlighted, grid.tickColumn);
    else
        RowTable::keyPressEvent(event);
}

void GridView::show(const desk::Grid& grid) {
    const desk::Grid& shown = model_->grid();
    const bool freshColumns = !sameColumns(shown.columns, grid.columns);
    const bool freshRows = freshColumns || shown.rows != grid.rows || shown.blankRows != grid.blankRows;
    if (!freshColumns && freshRows && shown.blankRows == grid.blankRows && model_->differsInTicksOnly(grid)) {
        model_->tick(grid);
        model_->highlight(grid.highlighted);
        return;
    }
    if (!freshRows) {
        model_->highlight(grid.highlighted);
        if (grid.highlighted > 0)
            scrollTo(model_->index(grid.highlighted - 1, std::max(columnAt(0), 0)));
        return;
    }
    model_->set(grid);
    if (freshColumns) {
        std::vector<int> twips;
        for (const desk::GridColumn& column : grid.columns)
            twips.push_back(column.twips);
        setColumnTwips(twips);
    }
    // A number must not lose its end, and a date or a name of up to ten characters is shown whole; a text that is
    // longer shows as shortened and has its tooltip.
    const int tenCharacters = fontMetrics().horizontalAdvance(u'国') * 10 + 8;
    for (int at = 0; at < model_->columnCount(); ++at) {
        const int needed = sizeHintForColumn(at) + 4;
        const bool number = grid.columns[static_cast<std::size_t>(at)].align == desk::Align::right;
        setColumnWidth(at, std::max(columnWidth(at), number ? needed : std::min(needed, tenCharacters)));
    }
    scrollToTop();
}

} // namespace ui
