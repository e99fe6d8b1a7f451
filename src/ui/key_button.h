#pragma once

#include <QKeySequence>
#include <QPushButton>

#include <vector>

namespace ui {

// A button that is pressed with keys as well, and shows them beside its caption: the key of what it does, which is the
// same on every screen, and while Alt is held the character that goes with Alt. Its text is the caption alone.
class KeyButton : public QPushButton {
  public:
    explicit KeyButton(const QString& caption);
    // Shows a key that somebody else sees to.
    KeyButton(const QString& caption, Qt::Key key) : QPushButton(caption), key_(key) {}

    // Whether what the caption says has keys of its own on every screen.
    bool isKnown() const { return !known_.isNull(); }
    // F9, Esc; empty where there is none.
    const QKeySequence& key() const { return key_; }
    // The character that goes with Alt; null before giveCharacters().
    QChar character() const { return character_; }

    // Alt is held or not.
    void showCharacter(bool shown);
    // What stands beside the caption now; empty where nothing does.
    QString badge() const;
    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    friend void giveCharacters(const std::vector<KeyButton*>& buttons);
    QFont badgeFont() const;
    int badgeWidth() const;
    int textWidth() const;

    QKeySequence key_;
    QChar known_;
    QChar character_;
    bool characterShown_ = false;
};

// Gives each button of a screen its character: known ones their own, the others 1 to 9, 0 and the letters left, in this
// order.
void giveCharacters(const std::vector<KeyButton*>& buttons);

} // namespace ui
