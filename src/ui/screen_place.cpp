// Where a screen stands on the display: its size, and which of its controls are in sight.
#include "ui/message_box.h"
#include "ui/notice_bar.h"
#include "ui/screen.h"
#include "ui/window_keeper.h"

#include <QApplication>
#include <QGridLayout>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>
#include <QWindow>

#include <algorithm>

namespace ui {

namespace {

// The frames of windows are alike: one that stands already tells how thick they are.
QSize thicknessOfFrames(const QWidget* window) {
    for (const QWindow* standing : QGuiApplication::topLevelWindows()) {
        const QMargins frame = standing->frameMargins();
        if (standing->isVisible() && standing->type() == Qt::Window && !frame.isNull())
            return {frame.left() + frame.right(), frame.top() + frame.bottom()};
    }
    const QStyle* style = window->style();
    const int border = 2 * style->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
    return {border, style->pixelMetric(QStyle::PM_TitleBarHeight) + border};
}

} // namespace

QSize Screen::freeRoom() const {
    return screen()->availableSize() - thicknessOfFrames(this);
}

void Screen::fit(QSize largest) {
    if (!area_)
        return;
    QWidget* body = area_->widget();
    // Sizes that were asked for before the controls had their contents have been kept.
    for (QWidget* inner : body->findChildren<QWidget*>())
        inner->updateGeometry();
    for (QLayout* inner : body->findChildren<QLayout*>())
        inner->invalidate();
    QLayout* content = body->layout();
    const int notice = bar_->isVisibleTo(this) ? bar_->sizeHint().height() : 0;
    const auto height = [&](int width) {
        int sum = notice;
        for (QLayout* part : {content, buttons_->layout()})
            sum += part->hasHeightForWidth() ? part->heightForWidth(width) : part->sizeHint().height();
        return sum;
    };
    int width = std::max(content->sizeHint().width(), buttons_->sizeHint().width());
    width = std::min(width, largest.width());
    const int high = height(width);
    if (high > largest.height())
        width = std::min(width + style()->pixelMetric(QStyle::PM_ScrollBarExtent), largest.width());
    const int given = std::min(high, largest.height());
    grownBy_ = given - std::min(high - notice, largest.height());
    giveSize({width, given});
}

void Screen::giveSize(QSize size) {
    resize(size);
    keeper_->settle(this->size());
}

// Of the controls and the buttons: sideways nothing scrolls.
int Screen::leastWidth() const {
    return std::max(area_->widget()->layout()->minimumSize().width(), buttons_->layout()->minimumSize().width());
}

// The size that the user gave the window last. Letters of another size make it larger or smaller in proportion, but
// never too small for what it shows.
void Screen::takeSize() {
    if (isMaximized()) {
        sizeLater_ = true;
        return;
    }
    fit(freeRoom());
    const auto kept = keeper_->window();
    if (!kept || !area_)
        return;
    const int letters = fontMetrics().height();
    QSize size = kept->size;
    if (letters != kept->letters)
        size = (size * letters / kept->letters).expandedTo({width(), height() - grownBy_});
    size.rheight() += grownBy_;
    giveSize(size.expandedTo({leastWidth(), 0}).boundedTo(freeRoom()));
    if (kept->maximised && !isVisible()) {
        keeper_->settle(true);
        setWindowState(windowState() | Qt::WindowMaximized);
    }
}

void Screen::sized(std::function<void()> measure) {
    measure();
    sized_.push_back(std::move(measure));
}

void Screen::scaleText(QWidget* widget, double factor) {
    sized([widget, factor] {
        QFont font;
        font.setPointSizeF(QApplication::font().pointSizeF() * factor);
        widget->setFont(font);
    });
}

void Screen::keepsColumns(RowTable& table, const QString& name) {
    keeper_->add(table, name);
}

void Screen::keepWindow() {
    keeper_->keepNow();
}

void Screen::followTextSize() {
    for (const auto& measure : sized_)
        measure();
    keeper_->showColumns();
    takeSize();
    placed_ = !isVisible();
    keepOnDisplay();
}

void Screen::resetWindow() {
    keeper_->forget();
    if (isMaximized())
        showNormal();
    keeper_->settle(false);
    takeSize();
    placed_ = !isVisible();
    keepOnDisplay();
}

// What the window manager does to the window is the user's doing, once it stands in its place.
void Screen::windowEvent(const QEvent& event) {
    if (event.type() == QEvent::Resize && event.spontaneous() && placed_)
        keeper_->changed();
    if (event.type() != QEvent::WindowStateChange)
        return;
    keeper_->changed();
    if (sizeLater_ && !isMaximized() && !isMinimized()) {
        sizeLater_ = false;
        QTimer::singleShot(0, this, [this] { takeSize(); });
    }
}

// What the frame really takes is known as soon as the window stands.
void Screen::keepOnDisplay() {
    if (placed_ || isMaximized() || isFullScreen())
        return;
    placed_ = true;
    const QRect room = screen()->availableGeometry();
    const QSize frame = frameGeometry().size() - size();
    if (frameGeometry().width() > room.width() || frameGeometry().height() > room.height())
        giveSize(size().boundedTo(room.size() - frame));
    QRect place(frameGeometry().topLeft(), size() + frame);
    if (room.contains(place))
        return;
    place.moveRight(std::min(place.right(), room.right()));
    place.moveBottom(std::min(place.bottom(), room.bottom()));
    place.moveLeft(std::max(place.left(), room.left()));
    place.moveTop(std::max(place.top(), room.top()));
    move(place.topLeft());
}

// The whole row of the control with its label, where the window has room for it.
void Screen::reveal(QWidget* widget) {
    if (!area_ || !area_->widget()->isAncestorOf(widget))
        return;
    QWidget* body = area_->widget();
    QRect shown(widget->mapTo(body, QPoint()), widget->size());
    for (QWidget* frame = widget->parentWidget(); frame != body; frame = frame->parentWidget()) {
        const auto* rows = qobject_cast<QGridLayout*>(frame->layout());
        if (!rows)
            continue;
        const QPoint corner = frame->mapFrom(body, shown.center());
        for (int at = 0; at < rows->count(); ++at) {
            int row = 0, column = 0, rowSpan = 0, columnSpan = 0;
            rows->getItemPosition(at, &row, &column, &rowSpan, &columnSpan);
            const QRect whole = rows->cellRect(row, 0) | rows->cellRect(row, column);
            if (!whole.contains(corner))
                continue;
            if (whole.height() <= area_->viewport()->height())
                shown = QRect(frame->mapTo(body, whole.topLeft()), whole.size());
            break;
        }
        break;
    }
    constexpr int margin = 8;
    const QRect sight(QPoint(area_->horizontalScrollBar()->value(), area_->verticalScrollBar()->value()),
                      area_->viewport()->size());
    if (shown.top() - margin < sight.top())
        area_->verticalScrollBar()->setValue(shown.top() - margin);
    else if (shown.bottom() + margin > sight.bottom())
        area_->verticalScrollBar()->setValue(shown.bottom() + margin - sight.height());
    if (shown.left() < sight.left())
        area_->horizontalScrollBar()->setValue(shown.left());
    else if (shown.right() > sight.right())
        area_->horizontalScrollBar()->setValue(std::min(shown.left(), shown.right() - sight.width()));
}

// The fields that are marked, or the one that takes the keyboard.
BoxPlace Screen::boxPlace() {
    const auto onDisplay = [](const QWidget* widget) { return QRect(widget->mapToGlobal(QPoint()), widget->size()); };
    QWidget* first = nullptr;
    for (const Binding& binding : bindings_) {
        const bool meant =
            binding.control && (binding.control->keyboard || binding.control->colour != desk::Colour::black);
        if (meant && (!first || binding.control->keyboard))
            first = binding.widget;
    }
    if (first)
        reveal(first);
    const QWidget* form = area_ ? static_cast<const QWidget*>(area_) : this;
    BoxPlace place{{}, first ? onDisplay(first) : QRect(), onDisplay(form)};
    for (const Binding& binding : bindings_) {
        if (binding.control && binding.control->colour != desk::Colour::black)
            place.fields |= onDisplay(binding.widget) & place.form;
    }
    place.fields |= place.first;
    return place;
}

} // namespace ui
