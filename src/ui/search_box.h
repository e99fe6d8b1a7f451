#pragma once

#include "ui/screen.h"

#include <QLineEdit>
#include <QTimer>

class QFrame;
class QLabel;

namespace ui {

// The box さがす: what is typed is looked for at each key, and what is found stands in a table below it, over the rest
// of the window. The keyboard stays in the box: Up and Down pick a row, Enter opens it, a click opens any, Esc ends the
// search. While the input method composes, every key is its own. Rests where the program has no search.
class SearchBox : public QLineEdit {
  public:
    explicit SearchBox(Screen& screen);

    // Takes the keyboard, with what was typed before chosen whole, and shows what is found for it.
    void begin();

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    class Table;

    void prepare();
    bool showsResults() const;
    void find(bool keepPicked = true);
    void showResults();
    void hideResults();
    void place();
    void pick(int row);
    void open(int row);

    Screen& screen_;
    QFrame* results_ = nullptr; // made when first something is typed: the start of the program is not to wait for it
    Table* table_ = nullptr;
    QLabel* note_ = nullptr;
    QTimer watch_; // whether something else is found by now
    int revision_ = 0;
    bool composing_ = false;
};

// The box with its label, as a line of a screen.
QWidget* searchLine(Screen& screen);

} // namespace ui
