#include "ui/row_table.h"

#include "ui/plain_text.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QMouseEvent>
#include <QProxyStyle>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyleOption>

#include <algorithm>
#include <numeric>

namespace ui {

namespace {

// The widths of the columns were chosen for text of this size.
constexpr double designPointSize = 9.0;
constexpr int twipsAnInch = 1440;
constexpr int defaultTwips = 1600;
constexpr int cellPadding = 12;
constexpr int headingSide = 4; // beside what the style leaves free anyway
constexpr int headingPadding = 22;
constexpr int rowsMeasured = 200;
constexpr int notch = 120; // of the wheel, in eighths of a degree

// Keeps headings away from the sides: a heading of numbers ends where its neighbour begins.
class HeadingStyle : public QProxyStyle {
  public:
    explicit HeadingStyle(QWidget* header) : QProxyStyle(header->style()->name()) { setParent(header); }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        const auto* heading = qstyleoption_cast<const QStyleOptionHeader*>(option);
        if (element != CE_HeaderLabel || !heading) {
            QProxyStyle::drawControl(element, option, painter, widget);
            return;
        }
        QStyleOptionHeader inner(*heading);
        inner.rect.adjust(headingSide, 0, -headingSide, 0);
        QProxyStyle::drawControl(element, &inner, painter, widget);
    }
};

// Adds the amount to the widths in proportion to the shares, to the pixel.
void distribute(int amount, const std::vector<int>& shares, std::vector<int>& widths) {
    long long left = std::accumulate(shares.begin(), shares.end(), 0LL);
    for (std::size_t at = 0; at < shares.size() && left > 0; ++at) {
        const int part = static_cast<int>(static_cast<long long>(amount) * shares[at] / left);
        widths[at] += part;
        amount -= part;
        left -= shares[at];
    }
}

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

// How wide a text is, roughly: characters of full width count twice.
qsizetype roughWidth(const QString& text) {
    return text.size() + std::ranges::count_if(text, [](QChar c) { return c.unicode() >= 0x1100; });
}

} // namespace

class RowTable::Model : public QAbstractTableModel {
  public:
    explicit Model(RowTable* table) : QAbstractTableModel(table), table_(table) {}

    void reset() {
        beginResetModel();
        rows_ = table_->shownRows();
        columns_ = static_cast<int>(table_->columns().size());
        endResetModel();
    }
    void repaint(int row) {
        if (row > 0 && row <= rows_)
            Q_EMIT dataChanged(index(row - 1, 0), index(row - 1, columns_ - 1));
    }

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : rows_; }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : columns_; }
    QVariant data(const QModelIndex& index, int role) const override {
        const bool picked = table_->pickedRow() == index.row() + 1;
        switch (role) {
        case Qt::DisplayRole:
            return table_->cell(index.row() + 1, index.column());
        case Qt::ToolTipRole:
            return plainToolTip(table_->cell(index.row() + 1, index.column()));
        case Qt::TextAlignmentRole:
            return QVariant::fromValue(alignment(column(index.column()).align));
        case Qt::BackgroundRole:
            return picked ? QColor(128, 255, 128) : QVariant();
        case Qt::ForegroundRole:
            return picked ? QColor(0, 0, 0) : QVariant();
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
    const desk::GridColumn& column(int at) const { return table_->columns()[static_cast<std::size_t>(at)]; }

    RowTable* table_;
    int rows_ = 0;
    int columns_ = 0;
};

RowTable::RowTable(QWidget* parent) : QTableView(parent), model_(new Model(this)) {
    setModel(model_);
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
    horizontalHeader()->setMinimumSectionSize(20);
    horizontalHeader()->setStyle(new HeadingStyle(horizontalHeader()));
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) { clickRow(0, column); });
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this] {
        if (sharing_)
            return;
        wished_ = widthsShown();
        if (pulled)
            pulled();
    });
}

void RowTable::clickRow(int row, int column) {
    if (clickedAt)
        clickedAt(row, column);
}

void RowTable::setColumns(std::vector<desk::GridColumn> columns) {
    columns_ = std::move(columns);
    needed_.assign(columns_.size(), 0);
    showRows();
}

void RowTable::useWidths(std::vector<int> widths) {
    wished_ = std::move(widths);
    shareWidth();
}

std::vector<int> RowTable::widthsShown() const {
    std::vector<int> widths;
    for (int at = 0; at < static_cast<int>(columns_.size()); ++at)
        widths.push_back(columnWidth(at));
    return widths;
}

void RowTable::showRows() {
    model_->reset();
    measured_ = false;
    if (isVisible())
        shareWidth();
    markPicked();
    scrollToTop();
    inSight_ = rowInSight();
    scrolledTo_ = verticalScrollBar()->value();
    keepInSight();
    updateGeometry();
}

// What is in sight is known once the table has its size; it gets others while its window opens.
void RowTable::keepInSight() {
    if (inSight_ == 0 || !isVisible())
        return;
    if (verticalScrollBar()->value() != scrolledTo_) {
        inSight_ = 0;
        return;
    }
    scrollTo(model()->index(inSight_ - 1, std::max(columnAt(0), 0)));
    scrolledTo_ = verticalScrollBar()->value();
}

void RowTable::showPicked(int former) {
    model_->repaint(former);
    model_->repaint(pickedRow());
    markPicked();
    if (currentIndex().isValid())
        scrollTo(currentIndex());
}

std::pair<int, int> RowTable::rowsInSight() const {
    if (filledRows() == 0)
        return {};
    const int first = rowAt(0) + 1;
    const int below = rowAt(viewport()->height()); // in part, -1 where the rows end above
    return {first, std::clamp(below < 0 ? filledRows() : below, first, filledRows())};
}

// Only the text that looks widest is measured and, of texts, some rows in even steps: a list may be long.
void RowTable::measure() const {
    if (std::exchange(measured_, true))
        return;
    for (int at = 0; at < static_cast<int>(columns_.size()); ++at) {
        QString widest;
        qsizetype width = 0;
        const bool number = columns_[static_cast<std::size_t>(at)].align == desk::Align::right;
        const int step = number ? 1 : std::max(1, filledRows() / rowsMeasured);
        for (int row = 1; row <= filledRows(); row += step) {
            const QString text = cell(row, at);
            if (const qsizetype rough = roughWidth(text); rough > width) {
                width = rough;
                widest = text;
            }
        }
        int& needed = needed_[static_cast<std::size_t>(at)];
        needed = std::max(needed, fontMetrics().horizontalAdvance(widest) + cellPadding);
    }
}

std::vector<RowTable::Width> RowTable::widths() const {
    measure();
    const double scale = std::max(1.0, font().pointSizeF() / designPointSize) * logicalDpiX() / twipsAnInch;
    const int tenCharacters = fontMetrics().horizontalAdvance(u'国') * 10 + cellPadding;
    std::vector<Width> all;
    for (int at = 0; at < static_cast<int>(columns_.size()); ++at) {
        const desk::GridColumn& column = columns_[static_cast<std::size_t>(at)];
        const bool number = column.align == desk::Align::right;
        const int heading = fontMetrics().horizontalAdvance(column.header) + headingPadding;
        const int contents = needed_[static_cast<std::size_t>(at)];
        const int start = static_cast<int>((column.twips ? column.twips : defaultTwips) * scale);
        all.push_back({std::max(start, heading),
                       std::max(heading, number ? contents : std::min(contents, tenCharacters)),
                       std::max(heading, contents)});
    }
    return all;
}

void RowTable::shareWidth() {
    if (columns_.empty())
        return;
    setWidths(wished_.size() == columns_.size() ? wished_ : sharedWidths());
}

void RowTable::setWidths(const std::vector<int>& widths) {
    const QScopedValueRollback guard(sharing_, true);
    for (int at = 0; at < static_cast<int>(widths.size()); ++at)
        setColumnWidth(at, widths[static_cast<std::size_t>(at)]);
}

std::vector<int> RowTable::sharedWidths() const {
    std::vector<int> shared;
    std::vector<int> toNeeded;
    std::vector<int> toStart;
    std::vector<int> whole;
    for (const Width& width : widths()) {
        shared.push_back(width.least);
        toNeeded.push_back(width.needed - width.least);
        toStart.push_back(std::max(0, width.start - width.needed));
        whole.push_back(std::max(width.start, width.needed));
    }
    // First all that a column holds, then the width it was meant to have, then what is left to all but the numbers.
    int left = viewport()->width() - std::accumulate(shared.begin(), shared.end(), 0);
    for (const std::vector<int>* wish : {&toNeeded, &toStart}) {
        const int given = std::clamp(std::accumulate(wish->begin(), wish->end(), 0), 0, std::max(0, left));
        distribute(given, *wish, shared);
        left -= given;
    }
    if (left > 0) {
        for (std::size_t at = 0; at < whole.size(); ++at)
            whole[at] = columns_[at].align == desk::Align::right ? 0 : whole[at];
        distribute(left, whole, shared);
    }
    return shared;
}

QSize RowTable::sizeHint() const {
    int width = 0;
    for (const Width& column : widths())
        width += std::max(column.start, column.needed);
    const int rows = verticalHeader()->defaultSectionSize() * preferredRows_;
    return {width + verticalScrollBar()->sizeHint().width() + 2 * frameWidth(),
            horizontalHeader()->sizeHint().height() + rows + 2 * frameWidth()};
}

QSize RowTable::minimumSizeHint() const {
    return {200, horizontalHeader()->sizeHint().height() + verticalHeader()->defaultSectionSize() * 5};
}

// The row picked bears the keyboard's mark, and no other.
void RowTable::markPicked() {
    const int row = pickedRow();
    setCurrentIndex(row > 0 ? model()->index(row - 1, std::max(columnAt(0), 0)) : QModelIndex());
}

void RowTable::mousePressEvent(QMouseEvent* event) {
    QTableView::mousePressEvent(event);
    if (event->button() != Qt::LeftButton)
        return;
    // The pointer's height picks the row, also to the right of the last column.
    const int row = rowAt(event->position().toPoint().y());
    const int column = columnAt(event->position().toPoint().x());
    clickRow(row >= 0 ? row + 1 : model()->rowCount() + 1, std::max(column, 0));
    markPicked();
}

void RowTable::mouseDoubleClickEvent(QMouseEvent* event) {
    const int row = rowAt(event->position().toPoint().y());
    if (event->button() == Qt::LeftButton && row >= 0 && row < filledRows() && openRow)
        openRow();
}

bool RowTable::isAtEnd(bool forward) const {
    const QScrollBar* bar = verticalScrollBar();
    if (!forward)
        return bar->value() == bar->minimum();
    const int last = filledRows() - 1;
    return bar->value() == bar->maximum() || last < 0 ||
           rowViewportPosition(last) + rowHeight(last) <= viewport()->height();
}

void RowTable::movePage(bool forward) {
    if (filledRows() == 0)
        return;
    if (isAtEnd(forward))
        turn(forward);
    else
        verticalScrollBar()->triggerAction(forward ? QScrollBar::SliderPageStepAdd : QScrollBar::SliderPageStepSub);
}

// Reading goes on where it was: backwards, a page is entered at its end.
void RowTable::turn(bool forward) {
    if (!turnPage)
        return;
    bool other = false;
    const auto watch = connect(model_, &QAbstractItemModel::modelReset, this, [&other] { other = true; });
    turnPage(forward);
    disconnect(watch);
    if (!other)
        return;
    inSight_ = 0;
    if (forward)
        scrollToTop();
    else if (filledRows() > 0)
        scrollTo(model()->index(filledRows() - 1, std::max(columnAt(0), 0)));
}

void RowTable::keyPressEvent(QKeyEvent* event) {
    const int here = pickedRow();
    QScrollBar* sideways = horizontalScrollBar();
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
        movePage(event->key() == Qt::Key_PageDown);
        return;
    case Qt::Key_Home:
        scrollToTop();
        return;
    case Qt::Key_End:
        if (filledRows() > 0)
            scrollTo(model()->index(filledRows() - 1, std::max(columnAt(0), 0)));
        return;
    case Qt::Key_Left:
    case Qt::Key_Right:
        sideways->triggerAction(event->key() == Qt::Key_Right ? QScrollBar::SliderSingleStepAdd
                                                              : QScrollBar::SliderSingleStepSub);
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

void RowTable::wheelEvent(QWheelEvent* event) {
    const int turned = event->angleDelta().y();
    const bool forward = turned < 0;
    if (turned == 0 || !turnPage || filledRows() == 0 || event->modifiers() != Qt::NoModifier || !isAtEnd(forward)) {
        turning_ = 0;
        QTableView::wheelEvent(event);
        return;
    }
    event->accept();
    // What runs on by itself after the fingers have left a touchpad turns no page.
    if (event->phase() == Qt::ScrollMomentum)
        return;
    turning_ = (turning_ < 0) == forward ? turning_ + turned : turned;
    if (std::abs(turning_) < notch)
        return;
    turning_ = 0;
    turn(forward);
}

void RowTable::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        shareWidth();
    keepInSight();
}

void RowTable::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() != QEvent::FontChange)
        return;
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    std::ranges::fill(needed_, 0);
    measured_ = false;
    shareWidth();
}

void RowTable::showEvent(QShowEvent* event) {
    QTableView::showEvent(event);
    if (!measured_)
        shareWidth();
    keepInSight();
}

} // namespace ui
