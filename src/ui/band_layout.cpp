#include "ui/band_layout.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace ui {

BandLayout::~BandLayout() {
    for (const Frame& frame : std::exchange(frames_, {}))
        delete frame.item;
}

void BandLayout::addFrame(QWidget* frame, bool below) {
    addWidget(frame);
    frames_.back().below = below;
}

void BandLayout::addItem(QLayoutItem* item) {
    frames_.push_back({item, false});
    invalidate();
}

QLayoutItem* BandLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? frames_[static_cast<std::size_t>(index)].item : nullptr;
}

QLayoutItem* BandLayout::takeAt(int index) {
    if (index < 0 || index >= count())
        return nullptr;
    QLayoutItem* item = frames_[static_cast<std::size_t>(index)].item;
    frames_.erase(frames_.begin() + index);
    invalidate();
    return item;
}

Qt::Orientations BandLayout::expandingDirections() const {
    Qt::Orientations directions;
    for (const Frame& frame : frames_)
        directions |= frame.item->expandingDirections();
    return directions;
}

bool BandLayout::hasHeightForWidth() const {
    return frames_.size() > 1 ||
           std::ranges::any_of(frames_, [](const Frame& frame) { return frame.item->hasHeightForWidth(); });
}

std::vector<BandLayout::Column> BandLayout::columns(bool apart) const {
    std::vector<Column> all;
    for (std::size_t at = 0; at < frames_.size(); ++at) {
        if (frames_[at].below && !apart && !all.empty())
            all.back().end = at + 1;
        else
            all.push_back({at, at + 1});
    }
    return all;
}

QSize BandLayout::sizeOf(const Column& column, QSize (QLayoutItem::*of)() const) const {
    QSize size(0, -spacing());
    for (std::size_t at = column.first; at < column.end; ++at) {
        const QSize one = (frames_[at].item->*of)();
        size = {std::max(size.width(), one.width()), size.height() + spacing() + one.height()};
    }
    return size;
}

// What is over is shared in proportion to the widths that the columns would like; what lacks is taken from what each of
// them can give. Empty where the width does not hold so many columns.
std::vector<BandLayout::Line> BandLayout::linesOf(const std::vector<Column>& columns, std::size_t across,
                                                  int width) const {
    std::vector<Line> all;
    for (std::size_t first = 0; first < columns.size(); first += across) {
        const std::size_t end = std::min(first + across, columns.size());
        int liked = 0;
        int least = 0;
        for (std::size_t at = first; at < end; ++at) {
            liked += sizeOf(columns[at], &QLayoutItem::sizeHint).width();
            least += sizeOf(columns[at], &QLayoutItem::minimumSize).width();
        }
        const int room = width - spacing() * static_cast<int>(end - first - 1);
        if (room < least && across > 1)
            return {};
        Line line;
        int left = room;
        for (std::size_t at = first; at < end; ++at) {
            const int hint = sizeOf(columns[at], &QLayoutItem::sizeHint).width();
            const int minimum = sizeOf(columns[at], &QLayoutItem::minimumSize).width();
            int share = left;
            if (at + 1 < end && room >= liked)
                share = hint + (room - liked) * hint / std::max(liked, 1);
            else if (at + 1 < end)
                share = minimum + (room - least) * (hint - minimum) / std::max(liked - least, 1);
            line.push_back({columns[at].first, columns[at].end, share});
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
    const std::vector<Column> together = columns(false);
    lines_ = linesOf(together, together.size(), width);
    if (sizeHint().width() <= width)
        return lines_;
    for (const std::vector<Column>& some : {together, columns(true)}) {
        for (std::size_t count = 1; count <= some.size(); ++count) {
            std::vector<Line> other = linesOf(some, (some.size() + count - 1) / count, width);
            if (!other.empty() && (lines_.empty() || heightOf(other, false) < heightOf(lines_, false)))
                lines_ = std::move(other);
        }
    }
    return lines_;
}

int BandLayout::heightOf(const QLayoutItem& item, int width, bool least) {
    if (item.hasHeightForWidth())
        return least ? item.minimumHeightForWidth(width) : item.heightForWidth(width);
    return (least ? item.minimumSize() : item.sizeHint()).height();
}

int BandLayout::heightOf(const Line& line, bool least) const {
    int height = 0;
    for (const Column& column : line) {
        int high = -spacing();
        for (std::size_t at = column.first; at < column.end; ++at)
            high += spacing() + heightOf(*frames_[at].item, column.width, least);
        height = std::max(height, high);
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
    for (const Frame& frame : frames_)
        size = size.expandedTo(frame.item->minimumSize());
    return size;
}

QSize BandLayout::sizeHint() const {
    QSize size(-spacing(), 0);
    for (const Column& column : columns(false)) {
        const QSize hint = sizeOf(column, &QLayoutItem::sizeHint);
        size = {size.width() + spacing() + hint.width(), std::max(size.height(), hint.height())};
    }
    return size;
}

void BandLayout::setGeometry(const QRect& rectangle) {
    QLayout::setGeometry(rectangle);
    const std::vector<Line>& all = lines(rectangle.width());
    int top = rectangle.y();
    for (std::size_t at = 0; at < all.size(); ++at) {
        // The last line, and in a line the last frame of each column, takes the rest: a list there is as high as the
        // window allows.
        const int bottom = at + 1 < all.size() ? top + heightOf(all[at], false) : rectangle.y() + rectangle.height();
        int x = rectangle.x();
        for (const Column& column : all[at]) {
            int y = top;
            for (std::size_t frame = column.first; frame < column.end; ++frame) {
                QLayoutItem* item = frames_[frame].item;
                const int high = frame + 1 < column.end ? heightOf(*item, column.width, false) : bottom - y;
                item->setGeometry(QRect(x, y, column.width, high));
                y += high + spacing();
            }
            x += column.width + spacing();
        }
        top = bottom + spacing();
    }
}

void BandLayout::invalidate() {
    linesWidth_ = -1;
    QLayout::invalidate();
}

} // namespace ui
