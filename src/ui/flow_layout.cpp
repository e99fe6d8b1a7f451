#include "ui/flow_layout.h"

#include <algorithm>

namespace ui {

namespace {
constexpr int space = 6;
constexpr int groupGap = 18;
} // namespace

FlowLayout::FlowLayout(QWidget* parent) : QLayout(parent) {
    setContentsMargins(0, 0, 0, 0);
}

FlowLayout::~FlowLayout() {
    for (const Placed& placed : items_)
        delete placed.item;
}

void FlowLayout::addGap() {
    gap_ = groupGap;
}

void FlowLayout::addStretch() {
    right_ = true;
}

void FlowLayout::keepNextTogether() {
    together_ = true;
}

void FlowLayout::keepLastTogether(int widgets) {
    for (auto placed = items_.end() - widgets + 1; placed < items_.end(); ++placed)
        placed->together = true;
}

void FlowLayout::addItem(QLayoutItem* item) {
    items_.push_back({item, items_.empty() ? 0 : space + gap_, right_, together_});
    gap_ = 0;
    right_ = together_ = false;
    invalidate();
}

int FlowLayout::count() const {
    return static_cast<int>(items_.size());
}

QLayoutItem* FlowLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)].item : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
    if (index < 0 || index >= count())
        return nullptr;
    QLayoutItem* item = items_[static_cast<std::size_t>(index)].item;
    items_.erase(items_.begin() + index);
    invalidate();
    return item;
}

FlowLayout::Run FlowLayout::unitFrom(std::size_t first) const {
    std::size_t end = first + 1;
    while (end < items_.size() && items_[end].together)
        ++end;
    return {first, end};
}

int FlowLayout::widthOf(const Run& run) const {
    int width = 0;
    for (std::size_t at = run.first; at < run.second; ++at)
        width += items_[at].item->sizeHint().width() + (at > run.first ? items_[at].before : 0);
    return width;
}

int FlowLayout::heightOf(const Run& line) const {
    int height = 0;
    for (std::size_t at = line.first; at < line.second; ++at)
        height = std::max(height, items_[at].item->sizeHint().height());
    return height;
}

std::vector<FlowLayout::Run> FlowLayout::lines(int width) const {
    std::vector<Run> all;
    int used = 0;
    for (std::size_t at = 0; at < items_.size();) {
        const Run unit = unitFrom(at);
        const int needed = widthOf(unit);
        if (all.empty() || used + items_[at].before + needed > width) {
            all.push_back(unit);
            used = needed;
        } else {
            all.back().second = unit.second;
            used += items_[at].before + needed;
        }
        at = unit.second;
    }
    return all;
}

bool FlowLayout::hasHeightForWidth() const {
    return !items_.empty() && unitFrom(0).second < items_.size();
}

int FlowLayout::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    int height = margins.top() + margins.bottom() - space;
    for (const Run& line : lines(width - margins.left() - margins.right()))
        height += heightOf(line) + space;
    return height;
}

QSize FlowLayout::minimumSize() const {
    QSize size;
    for (std::size_t at = 0; at < items_.size();) {
        const Run unit = unitFrom(at);
        size = size.expandedTo({widthOf(unit), heightOf(unit)});
        at = unit.second;
    }
    return size.grownBy(contentsMargins());
}

QSize FlowLayout::sizeHint() const {
    const Run all{0, items_.size()};
    return QSize(widthOf(all), heightOf(all)).grownBy(contentsMargins());
}

void FlowLayout::setGeometry(const QRect& rectangle) {
    QLayout::setGeometry(rectangle);
    const QRect inside = rectangle.marginsRemoved(contentsMargins());
    int y = inside.y();
    for (const Run& line : lines(inside.width())) {
        const int height = heightOf(line);
        int x = inside.x();
        for (std::size_t at = line.first; at < line.second; ++at) {
            const Placed& placed = items_[at];
            const int width = placed.item->sizeHint().width();
            if (at > line.first)
                x += placed.before;
            if (placed.right)
                x = std::max(x, inside.x() + inside.width() - width);
            placed.item->setGeometry(QRect(x, y, width, height));
            x += width;
        }
        y += height + space;
    }
}

} // namespace ui
