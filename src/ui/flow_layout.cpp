#include "ui/flow_layout.h"

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

void FlowLayout::addItem(QLayoutItem* item) {
    items_.push_back({item, items_.empty() ? 0 : space + gap_, right_});
    gap_ = 0;
    right_ = false;
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
    return item;
}

int FlowLayout::heightForWidth(int width) const {
    return place(QRect(0, 0, width, 0), false);
}

QSize FlowLayout::minimumSize() const {
    QSize size;
    for (const Placed& placed : items_)
        size = size.expandedTo(placed.item->minimumSize());
    return size.grownBy(contentsMargins());
}

QSize FlowLayout::sizeHint() const {
    QSize size;
    for (const Placed& placed : items_) {
        const QSize hint = placed.item->sizeHint();
        size = {size.width() + placed.before + hint.width(), std::max(size.height(), hint.height())};
    }
    return size.grownBy(contentsMargins());
}

void FlowLayout::setGeometry(const QRect& rectangle) {
    QLayout::setGeometry(rectangle);
    place(rectangle, true);
}

int FlowLayout::place(const QRect& outside, bool apply) const {
    const QMargins margins = contentsMargins();
    const QRect rectangle = outside.marginsRemoved(margins);
    int x = rectangle.x();
    int y = rectangle.y();
    int line = 0;
    for (const Placed& placed : items_) {
        const QSize hint = placed.item->sizeHint();
        if (line > 0 && x + placed.before + hint.width() > rectangle.right() + 1) {
            x = rectangle.x();
            y += line + space;
            line = 0;
        } else {
            x += placed.before;
        }
        const int left = placed.right ? std::max(x, rectangle.right() + 1 - hint.width()) : x;
        if (apply)
            placed.item->setGeometry(QRect(QPoint(left, y), hint));
        x = left + hint.width();
        line = std::max(line, hint.height());
    }
    return y + line + margins.bottom() - outside.y();
}

} // namespace ui
