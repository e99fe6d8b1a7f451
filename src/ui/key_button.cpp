#include "ui/key_button.h"

#include <QStyleOptionButton>
#include <QStylePainter>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

struct Verb {
    QString caption;
    Qt::Key key; // unknown: none
    QChar character;
};

// Free of what a secretary presses for something else: F4 opens a list, F6, F7 and F10 turn what was typed into other
// characters. What destroys has no F-key, and what does so without a question no key at all.
const QString unasked = u"廃棄"_s;
const std::array<Verb, 18>& verbs() {
    static const std::array<Verb, 18> all{{{u"照会"_s, Qt::Key_F5, u'S'},
                                           {u"表示"_s, Qt::Key_F5, u'H'},
                                           {u"印刷"_s, Qt::Key_F8, u'P'},
                                           {u"登録"_s, Qt::Key_F9, u'T'},
                                           {u"新規"_s, Qt::Key_F11, u'A'},
                                           {u"更新"_s, Qt::Key_F12, u'K'},
                                           {u"確定"_s, Qt::Key_F12, u'K'},
                                           {u"終了"_s, Qt::Key_Escape, u'X'},
                                           {u"前ページ"_s, Qt::Key_unknown, u'J'},
                                           {u"後ページ"_s, Qt::Key_unknown, u'L'},
                                           {u"プレビュー"_s, Qt::Key_unknown, u'W'},
                                           {u"印刷プレビュー"_s, Qt::Key_unknown, u'W'},
                                           {u"通知処理"_s, Qt::Key_unknown, u'G'},
                                           {u"削除"_s, Qt::Key_unknown, u'E'},
                                           {u"檀家抹消"_s, Qt::Key_unknown, u'M'},
                                           {u"予約取消"_s, Qt::Key_unknown, u'C'},
                                           {u"通知取消"_s, Qt::Key_unknown, u'U'}}};
    return all;
}

const QString others = u"1234567890QACEGHIJKLMPSTUWXY"_s;
// Those of the bar at the top, and of what is offered in it: B D F N O R V Z.

constexpr int side = 7;  // between the badge and the button's edge
constexpr int plate = 3; // around a character; it stands as far to the right as it can
constexpr int apart = 4; // at least, between caption and badge

QColor mixed(const QColor& one, const QColor& other, double share) {
    const auto part = [share](int a, int b) { return static_cast<int>(a * share + b * (1 - share)); };
    return {part(one.red(), other.red()), part(one.green(), other.green()), part(one.blue(), other.blue())};
}

} // namespace

KeyButton::KeyButton(const QString& caption) : QPushButton(caption) {
    const auto verb = std::ranges::find(verbs(), caption, &Verb::caption);
    if (verb == verbs().end())
        return;
    known_ = verb->character;
    if (verb->key != Qt::Key_unknown)
        key_ = verb->key;
}

void giveCharacters(const std::vector<KeyButton*>& buttons) {
    QString taken;
    for (KeyButton* button : buttons)
        taken += button->character_ = button->known_;
    for (KeyButton* button : buttons) {
        if (!button->isKnown() && button->text() != unasked) {
            const auto* free =
                std::ranges::find_if(others, [&](QChar character) { return !taken.contains(character); });
            button->character_ = free == others.end() ? QChar() : *free;
            taken += button->character_;
        }
        QStringList keys;
        if (!button->key_.isEmpty())
            keys << button->key_.toString();
        if (!button->character_.isNull())
            keys << u"Alt+"_s + button->character_;
        const QString told = keys.join(u"、"_s);
        if (told.isEmpty())
            continue;
        if (!button->toolTip().isEmpty())
            button->setToolTip(u"%1（%2）"_s.arg(button->toolTip(), told));
        button->setAccessibleDescription(button->toolTip().isEmpty() ? told : button->toolTip());
    }
}

void KeyButton::showCharacter(bool shown) {
    if (std::exchange(characterShown_, shown) != shown)
        update();
}

QString KeyButton::badge() const {
    return characterShown_ && !character_.isNull() ? QString(character_) : key_.toString();
}

QFont KeyButton::badgeFont() const {
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.8);
    return small;
}

int KeyButton::badgeWidth() const {
    return badge().isEmpty() ? 0 : QFontMetrics(badgeFont()).horizontalAdvance(badge());
}

int KeyButton::textWidth() const {
    return fontMetrics().size(Qt::TextShowMnemonic, text()).width();
}

// Alt changes no size.
QSize KeyButton::sizeHint() const {
    const QSize plain = QPushButton::sizeHint();
    if (key_.isEmpty())
        return plain;
    const int key = QFontMetrics(badgeFont()).horizontalAdvance(key_.toString());
    return plain.expandedTo({side + textWidth() + apart + key + side, 0});
}

void KeyButton::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    painter.drawControl(QStyle::CE_PushButtonBevel, option);
    QStyleOptionButton caption = option;
    caption.rect = style()->subElementRect(QStyle::SE_PushButtonContents, &option, this);
    // The caption stays in the middle where there is room beside it, and else gives way to the left.
    const int width = badgeWidth();
    const int edge = characterShown_ ? plate + 1 : side;
    const int free = (this->width() - textWidth()) / 2;
    if (width > 0)
        caption.rect.translate(-std::clamp(width + edge + apart - free, 0, std::max(0, free - plate)), 0);
    painter.drawControl(QStyle::CE_PushButtonLabel, caption);
    if (option.state & QStyle::State_HasFocus) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(option);
        focus.rect = style()->subElementRect(QStyle::SE_PushButtonFocusRect, &option, this);
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
    }
    if (width == 0)
        return;
    const int height = QFontMetrics(badgeFont()).height();
    QRect place(this->width() - edge - width, (this->height() - height) / 2, width, height);
    painter.setFont(badgeFont());
    const QColor text = palette().color(QPalette::ButtonText);
    if (characterShown_) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(QColor(255, 246, 214));
        painter.setPen(QColor(170, 150, 90));
        painter.drawRoundedRect(place.adjusted(-plate, -1, plate, 0), 3, 3);
        painter.setPen(isEnabled() ? QColor(60, 48, 0) : text);
    } else {
        painter.setPen(mixed(text, palette().color(QPalette::Button), 0.7));
    }
    painter.drawText(place, Qt::AlignCenter | Qt::TextDontClip, badge());
}

} // namespace ui
