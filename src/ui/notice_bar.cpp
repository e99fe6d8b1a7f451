#include "ui/notice_bar.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

struct ActionName {
    NoticeAction action;
    QString name;
    QChar key; // with Alt
};

const std::array<ActionName, 4>& actionNames() {
    static const std::array<ActionName, 4> names{{{NoticeAction::読み直す, u"読み直す"_s, u'R'},
                                                  {NoticeAction::表示する, u"表示する"_s, u'V'},
                                                  {NoticeAction::戻す, u"戻す"_s, u'B'},
                                                  {NoticeAction::捨てる, u"捨てる"_s, u'D'}}};
    return names;
}

} // namespace

NoticeBar::NoticeBar(QWidget* parent) : QFrame(parent) {
    setObjectName(u"お知らせ"_s);
    setAccessibleName(u"お知らせ"_s);
    setFrameShape(QFrame::NoFrame);
    setAutoFillBackground(true);
    QPalette colours = palette();
    colours.setColor(QPalette::Window, QColor(255, 246, 214));
    colours.setColor(QPalette::WindowText, QColor(60, 48, 0));
    setPalette(colours);
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(12, 4, 10, 4);
    label_ = new QLabel;
    label_->setObjectName(u"お知らせ文"_s);
    label_->setTextFormat(Qt::PlainText);
    label_->setWordWrap(true);
    line->addWidget(label_, 1);
    for (const ActionName& one : actionNames()) {
        QPushButton* button = addButton(one.name, one.name, one.key);
        button->hide();
        connect(button, &QPushButton::clicked, this, [this, action = one.action] {
            if (pressed)
                pressed(action);
        });
        buttons_[static_cast<std::size_t>(one.action)] = button;
    }
    hide();
}

QPushButton* NoticeBar::addButton(const QString& name, const QString& caption, QChar key) {
    auto* button = new QPushButton(caption + u"(&"_s + key + u')');
    button->setObjectName(name);
    button->setFocusPolicy(Qt::NoFocus);
    button->setAutoDefault(false);
    layout()->addWidget(button);
    return button;
}

// Buttons stay as long as the same is offered, so that none goes while it is being pressed; deleted later, for one that
// was pressed is still at work.
void NoticeBar::showOffers(std::vector<desk::Offer> offers) {
    const bool same = std::ranges::equal(offers, offers_, {}, &desk::Offer::caption, &desk::Offer::caption);
    offers_ = std::move(offers);
    if (same)
        return;
    for (QPushButton* button : std::exchange(offerButtons_, {})) {
        button->setObjectName({});
        button->hide();
        button->deleteLater();
    }
    for (std::size_t i = 0; i < offers_.size(); ++i) {
        QPushButton* button = addButton(offers_[i].name, offers_[i].caption, offers_[i].key);
        connect(button, &QPushButton::clicked, this, [this, i] {
            if (taken && i < offers_.size())
                taken(offers_[i].run);
        });
        offerButtons_.push_back(button);
    }
}

void NoticeBar::tell(const QString& text, std::initializer_list<NoticeAction> actions,
                     std::vector<desk::Offer> offers) {
    showOffers(std::move(offers));
    const bool other = text != text_;
    text_ = text;
    label_->setText(text);
    for (const ActionName& one : actionNames())
        buttons_[static_cast<std::size_t>(one.action)]->setVisible(std::ranges::find(actions, one.action) !=
                                                                   actions.end());
    show();
    if (other) {
        label_->setAccessibleName(text);
        QAccessibleEvent event(label_, QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
}

void NoticeBar::clear() {
    showOffers({});
    text_.clear();
    label_->clear();
    for (QPushButton* button : buttons_)
        button->hide();
    hide();
}

} // namespace ui
