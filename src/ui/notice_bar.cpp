#include "ui/notice_bar.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

struct ActionName {
    NoticeAction action;
    QString name;
    QChar key; // with Alt
};

const std::array<ActionName, 5>& actionNames() {
    static const std::array<ActionName, 5> names{{{NoticeAction::読み直す, u"読み直す"_s, u'R'},
                                                  {NoticeAction::表示する, u"表示する"_s, u'V'},
                                                  {NoticeAction::戻す, u"戻す"_s, u'B'},
                                                  {NoticeAction::捨てる, u"捨てる"_s, u'D'},
                                                  {NoticeAction::元に戻す, u"元に戻す"_s, u'Z'}}};
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
        auto* button = new QPushButton(one.name + u"(&"_s + one.key + u')');
        button->setObjectName(one.name);
        button->setFocusPolicy(Qt::NoFocus);
        button->setAutoDefault(false);
        button->hide();
        connect(button, &QPushButton::clicked, this, [this, action = one.action] {
            if (pressed)
                pressed(action);
        });
        line->addWidget(button);
        buttons_[static_cast<std::size_t>(one.action)] = button;
    }
    hide();
}

void NoticeBar::tell(const QString& text, std::initializer_list<NoticeAction> actions) {
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
    text_.clear();
    label_->clear();
    for (QPushButton* button : buttons_)
        button->hide();
    hide();
}

} // namespace ui
