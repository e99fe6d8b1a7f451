// The keys that press a screen's buttons.
#include "ui/key_button.h"
#include "ui/screen.h"
#include "ui/workplace.h"

#include <QKeyEvent>
#include <QShortcut>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace ui {

void Screen::giveKeys() {
    giveCharacters(keyButtons_);
    for (KeyButton* button : keyButtons_) {
        QList<QKeySequence> keys;
        if (!button->key().isEmpty())
            keys << button->key();
        if (!button->character().isNull())
            keys << QKeySequence(Qt::ALT | static_cast<Qt::Key>(button->character().unicode()));
        if (keys.isEmpty())
            continue;
        // Belongs to the button: one that is hidden or disabled is not pressed.
        auto* shortcut = new QShortcut(button);
        shortcut->setKeys(keys);
        shortcut->setAutoRepeat(false);
        connect(shortcut, &QShortcut::activated, this, [this, button] { pressWithKey(button); });
    }
}

// As the mouse does it: the button takes the keyboard first, and is pressed after what runs when a box is left. A
// message of that swallows the press.
void Screen::pressWithKey(KeyButton* button) {
    if (busy_)
        return;
    if (button->focusPolicy() & Qt::ClickFocus)
        button->setFocus(Qt::ShortcutFocusReason);
    QTimer::singleShot(0, button, [this, button] {
        if (busy_ || !button->isVisible())
            return;
        keyPressed_ = true;
        button->click();
        keyPressed_ = false;
    });
}

// Unsaved inputs last as long as the program runs: a key pressed once too often does not end it.
bool Screen::keyMayClose() {
    if (!workplace_.isLast(*this) || (workplace_.drafts.all().empty() && !currentDraft()))
        return true;
    bool close = false;
    operate([this, &close] {
        close = desk().ask(u"保存していない入力があります。\n終了すると消えます。終了しますか？"_s, title(),
                           desk::Preset::no);
    });
    return close;
}

void Screen::followAlt(QEvent* event) {
    const bool down = event->type() == QEvent::KeyPress;
    if ((down || event->type() == QEvent::KeyRelease) && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Alt)
        showAltKeys(down);
}

void Screen::showAltKeys(bool shown) {
    for (KeyButton* button : keyButtons_)
        button->showCharacter(shown);
}

} // namespace ui
