#include "ui/band_layout.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace ui {

BandLayout::~BandLayout() {
    // A layout that goes takes itself out of the one it stands in.
    for (QLayoutItem* item : std::exchange(items_, {}))
        delete item;
}

void BandLayout::addColumn(QLayout* column) {
    addChildLayout(column);
    addItem(column);
}

void BandLayout::addItem(QLayoutItem* item) {
    items_.push_back(item);
    invalidate();
}

QLayoutItem* BandLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)] : nullptr;
}

QLayoutItem* BandLayout::takeAt(int index) {
    if (index < 0 || index >= count())
        return nullptr;
    QLayoutItem* item = items_[static_cast<std::size_t>(index)];
    items_.erase(items_.begin() + index);
    invalidate();
    return item;
}

Qt::Orientations BandLayout::expandingDirections() const {
    Qt::Orientations directions;
    for (const QLayoutItem* item : items_)
        directions |= item->expandingDirections();
    return directions;
}

bool BandLayout::hasHeightForWidth() const {
    return items_.size() > 1 ||
           std::ranges::any_of(items_, [](const QLayoutItem* item) { return item->hasHeightForWidth(); });
}

// What is over is shared in proportion to the widths that the columns would like; what lacks is taken from what each of
// them can give.
std::vector<BandLayout::Line> BandLayout::linesOf(std::size_t columns, int width) const {
    std::vector<Line> all;
    for (std::size_t first = 0; first < items_.size(); first += columns) {
        const std::size_t end = std::min(first + columns, items_.size());
        int liked = 0;
        int least = 0;
        for (std::size_t at = first; at < end; ++at) {
            liked += items_[at]->sizeHint().width();
            least += items_[at]->minimumSize().width();
        }
        const int room = width - spacing() * static_cast<int>(end - first - 1);
        if (room < least && columns > 1)
            return {};
        Line line;
        int left = room;
        for (std::size_t at = first; at < end; ++at) {
            const int hint = items_[at]->sizeHint().width();
            const int minimum = items_[at]->minimumSize().width();
            int share = left;
            if (at + 1 < end && room >= liked)
                share = hint + (room - liked) * hint / std::max(liked, 1);
            else if (at + 1 < end)
                share = minimum + (room - least) * (hint - minimum) / std::max(liked - least, 1);
            line.push_back({at, share});
            left -= share;
        }
        all.push_back(std::move(line));
    }
    return all;
}

const std::vector<BandLayout::Line>& BandLayout::lines(int width) const {
    if (width == linesWidth_)
        return lines_;
    linesWidth_ = width;
    lines_ = linesOf(items_.size(), width);
    if (items_.size() > 1 && sizeHint().width() > width) {
        std::size_t before = items_.size();
        for (std::size_t count = 2; count <= items_.size(); ++count) {
            const std::size_t columns = (items_.size() + count - 1) / count;
            if (columns == std::exchange(before, columns))
                continue;
            std::vector<Line> other = linesOf(columns, width);
            if (!other.empty() && (lines_.empty() || heightOf(other, false) < heightOf(lines_, false)))
                lines_ = std::move(other);
        }
    }
    return lines_;
}

int BandLayout::heightOf(const Line& line, bool least) const {
    int height = 0;
    for (const Cell& cell : line) {
        const QLayoutItem* item = items_[cell.item];
        if (item->hasHeightForWidth())
            height =
                std::max(height, least ? item->minimumHeightForWidth(cell.width) : item->heightForWidth(cell.width));
        else
            height = std::max(height, least ? item->minimumSize().height() : item->sizeHint().height());
    }
    return height;
}

int BandLayout::heightOf(const std::vector<Line>& lines, bool least) const {
    return std::accumulate(lines.begin(), lines.end(), -spacing(),
                           [&](int height, const Line& line) { return height + spacing() + heightOf(line, least); });
}

int BandLayout::heightForWidth(int width) const {
    return heightOf(lines(width), false);
}

int BandLayout::minimumHeightForWidth(int width) const {
    return heightOf(lines(width), true);
}

QSize BandLayout::minimumSize() const {
    QSize size;
    for (const QLayoutItem* item : items_)
        size = size.expandedTo(item->minimumSize());
    return size;
}

QSize BandLayout::sizeHint() const {
    QSize size(-spacing(), 0);
    for (const QLayoutItem* item : items_) {
        const QSize hint = item->sizeHint();
        size = {size.width() + spacing() + hint.width(), std::max(size.height(), hint.height())};
    }
    return size;
}

void BandLayout::setGeometry(const QRect& rectangle) {
    QLayout::setGeometry(rectangle);
    const std::vector<Line>& all = lines(rectangle.width());
    int y = rectangle.y();
    for (std::size_t at = 0; at < all.size(); ++at) {
        // The last line takes the rest: a list there is as high as the window allows.
        const int height = at + 1 < all.size() ? heightOf(all[at], false) : rectangle.y() + rectangle.height() - y;
        int x = rectangle.x();
        for (const Cell& cell : all[at]) {
            items_[cell.item]->setGeometry(QRect(x, y, cell.width, height));
            x += cell.width + spacing();
        }
        y += height + spacing();
    }
}

void BandLayout::invalidate() {
    linesWidth_ = -1;
    QLayout::invalidate();
}

} // namespace ui
