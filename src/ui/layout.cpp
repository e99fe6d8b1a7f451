#include "ui/layout.h"

#include "ui/band_layout.h"
#include "ui/flow_layout.h"
#include "ui/layout_parts.h"
#include "ui/live_label.h"
#include "ui/notice_bar.h"
#include "ui/plain_text.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

// The controls of a screen. Only what they need at least makes the window scroll: a list gives way before that.
class Body : public QWidget {
  public:
    int heightForWidth(int width) const override {
        // A scroll bar that stands must not itself be what makes it needed.
        const QSize room = static_cast<const QScrollArea*>(parentWidget()->parentWidget())->maximumViewportSize();
        const int needed = layout()->minimumHeightForWidth(room.width());
        return needed <= room.height() ? needed : layout()->minimumHeightForWidth(width);
    }
};

} // namespace

QWidget* frameWidget(const QString& name, const QString& title) {
    QWidget* frame = title.isEmpty() ? new QWidget : new QGroupBox(title);
    frame->setObjectName(name);
    return frame;
}

Layout::Layout(Screen& screen) : screen_(screen), body_(new Body), bar_(new QWidget) {
    bands_ = new QVBoxLayout(body_);
    bands_->setContentsMargins(10, 8, 10, 4);
    buttons_ = new FlowLayout(bar_);
    buttons_->setContentsMargins(10, 6, 10, 10);
}

void Layout::finish() {
    for (const auto& [label, controls] : followed_)
        for (const QString& control : controls)
            label->follow(body_->findChild<QWidget*>(control));
    if (!grid_)
        bands_->addStretch(1);
    // Rows stand together at the top of a frame that is taller than they are.
    for (QGridLayout* rows : shortFrames_)
        rows->setRowStretch(rows->rowCount(), 1);
    auto* whole = new QVBoxLayout(&screen_);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(0);
    whole->addWidget(screen_.bar());
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(body_);
    whole->addWidget(area, 1);
    whole->addWidget(bar_);
    screen_.area_ = area;
    screen_.buttons_ = bar_;
    screen_.showAccent();
    screen_.giveKeys();
}

Layout& Layout::frame(const QString& name, const QString& title) {
    QWidget* box = frameWidget(name, title);
    if (next_ == Next::band || !band_) {
        band_ = new BandLayout;
        bands_->addLayout(band_);
    }
    band_->addFrame(box, next_ == Next::below);
    next_ = Next::band;
    rows_ = new QGridLayout(box);
    shortFrames_.push_back(rows_);
    rows_->setColumnStretch(1, 1);
    rows_->setVerticalSpacing(5);
    rows_->setContentsMargins(title.isEmpty() ? QMargins(2, 2, 2, 2) : QMargins(8, 6, 8, 8));
    items_ = nullptr;
    label_ = nullptr;
    return *this;
}

Layout& Layout::beside() {
    next_ = Next::beside;
    return *this;
}

Layout& Layout::below() {
    next_ = Next::below;
    return *this;
}

Layout& Layout::row(const QString& text, const QString& labelName) {
    if (!rows_)
        frame();
    const int at = rows_->rowCount();
    label_ = plainLabel(text);
    label_->setObjectName(labelName);
    label_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // An empty one would take a character's width.
    label_->setHidden(text.isEmpty());
    screen_.sized([label = label_] { label->setMinimumHeight(0); });
    rows_->addWidget(label_, at, 0, Qt::AlignTop);
    rowName_ = spoken_ = text;
    items_ = nullptr;
    return *this;
}

int widthOf(const Screen& screen, int characters) {
    return screen.fontMetrics().horizontalAdvance(u'国') * characters + 16;
}

void Layout::fixWidth(QWidget* widget, int characters, int more) {
    screen_.sized(
        [screen = &screen_, widget, characters, more] { widget->setFixedWidth(widthOf(*screen, characters) + more); });
}

void Layout::place(QWidget* widget) {
    if (!label_)
        row();
    if (!items_) {
        items_ = new FlowLayout;
        rows_->addLayout(items_, rows_->rowCount() - 1, 1);
    }
    items_->addWidget(widget);
    last_ = widget;
    // The label stands level with the first line of what it names.
    screen_.sized([screen = &screen_, label = label_, widget] {
        const int oneLine = screen->fontMetrics().height() + 14;
        label->setMinimumHeight(std::max(label->minimumHeight(), std::min(widget->sizeHint().height(), oneLine)));
        // A label remembers the size that it asked for, its former least height included, until it is laid out anew.
        label->setIndent(label->indent());
    });
}

void Layout::speak(QWidget* widget, const QString& name) {
    widget->setAccessibleName(name);
    const auto* box = qobject_cast<QComboBox*>(widget);
    if (!box)
        return;
    box->view()->setAccessibleName(name);
    if (box->lineEdit())
        box->lineEdit()->setAccessibleName(name);
}

void Layout::label(QWidget* widget) {
    if (widget->accessibleName().isEmpty())
        speak(widget, std::exchange(spoken_, {}));
    if (label_ && !label_->text().isEmpty() && !label_->buddy())
        label_->setBuddy(widget);
}

Layout& Layout::named(const QString& name) {
    speak(last_, name);
    return *this;
}

Layout& Layout::widget(QWidget* widget) {
    place(widget);
    label(widget);
    return *this;
}

Layout& Layout::fill(QWidget* widget) {
    widget->setAccessibleName(screen_.windowTitle());
    bands_->addWidget(widget, 1);
    grid_ = true;
    last_ = widget;
    return *this;
}

Layout& Layout::onLeave(Operation operation) {
    screen_.onLeave(last_, std::move(operation));
    return *this;
}

} // namespace ui
