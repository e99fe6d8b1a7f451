#pragma once

#include <QObject>
#include <QString>

#include <optional>

class QInputMethodEvent;
class QLineEdit;

namespace ui {

// Fills a kana box from what the input method reads out while the name beside it is typed: the kana seen during
// composition, in katakana, appended when the name is committed. Only while the kana box is empty or holds what was
// filled that way; what is typed into it wins.
class KanaReading : public QObject {
  public:
    KanaReading(QLineEdit* name, QLineEdit* kana);

    // What the kana box holds was put there by the program: readings go on from it.
    void goOn();

    // A composition text as katakana; nothing while it holds anything but kana (an n at its end apart, which stands for
    // ん until a vowel follows).
    static std::optional<QString> katakana(const QString& composed);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool mine() const;
    void append(const QString& text);
    void compose(const QInputMethodEvent& event);

    QLineEdit* name_;
    QLineEdit* kana_;
    QString reading_;            // of the composition under way
    std::optional<QString> own_; // what this put into the kana box
};

} // namespace ui
