#pragma once

#include "desk/date_help.h"
#include "desk/form.h"
#include "ui/screen.h"

#include <QString>

#include <functional>
#include <initializer_list>
#include <utility>
#include <vector>

class QGridLayout;
class QGroupBox;
class QLabel;
class QListWidget;
class QPushButton;
class QVBoxLayout;

namespace ui {

class BandLayout;
class FlowLayout;
class KeyButton;
class LiveLabel;

struct OptionItem {
    QString name;
    desk::Option& option;
    QString caption;
};

// Object names of a date input group's five controls.
struct DateNames {
    QString era;
    QString year;
    QString month;
    QString day;
    QString western;
};

// A text that follows from what stands in the form, saved or not.
struct LiveText {
    QString text;
    bool warns = false;
    QStringList marked = {}; // object names of the boxes that it speaks of: they wear a pale ground
};

// What a grid's events lead to; all but clicked may be absent.
struct GridEvents {
    Operation clicked = {};      // the row and column are in the grid's value
    Operation opened = {};       // double click or Enter
    Operation nextPage = {};     // Page Down
    Operation previousPage = {}; // Page Up
};

// What the two boxes of a date range lead to.
struct RangeEvents {
    Operation fromLeft = {}; // the keyboard leaves the first date
    Operation toLeft = {};
    Operation entered = {}; // Enter in the second date
};

// Declares a screen's controls in screen order: each call makes the widget with its object name, label, accessible
// name, place in the tab order and binding to the form's value. Widths are in full-width characters of the screen's
// font. finish() puts the screen together.
//
// Where a window is too narrow for them, frames that stand beside each other go below each other and the controls of a
// row go on in a second line; what is too high scrolls.
class Layout {
  public:
    explicit Layout(Screen& screen);
    // Comes last; nothing is shown without it.
    void finish();

    // A frame below the former one; with a title it has a border. Rows that follow stand in it.
    Layout& frame(const QString& name = {}, const QString& title = {});
    // The next frame stands to the right of the former ones of this band.
    Layout& beside();
    // The next frame stands below the last one of its column, not of the band.
    Layout& below();
    // A new row with its label on the left.
    Layout& row(const QString& label = {}, const QString& labelName = {});

    // Plain text inside a row, and the name of the control that follows it.
    Layout& note(const QString& text, const QString& name = {});
    // What stands behind the control declared last: 年, 歳.
    Layout& unit(const QString& text);
    // What a screen reader calls the control declared last, where the text before it does not say it.
    Layout& named(const QString& name);
    Layout& text(const QString& name, desk::Text& value, int width);
    // The box declared last is the kana of this text box: it fills itself while the name is typed.
    Layout& kanaOf(const QString& name);
    Layout& number(const QString& name, desk::Text& value, int width); // right-aligned
    // The control declared last holds a number, whatever its form.
    Layout& numeric();
    // The record shown is found by the controls declared last.
    Layout& namesRecord(int controls = 1);
    Layout& shown(const QString& name, desk::Text& value, int width); // only shows: read-only, not in the tab order
    // picked runs when an entry is chosen, and on Enter with what was typed.
    Layout& combo(const QString& name, desk::Combo& value, int width, const Operation& picked = {});
    // A drop-down list without free text.
    Layout& choice(const QString& name, desk::Combo& value, int width, const Operation& picked);
    // Option buttons in a frame of their own; may all be off.
    Layout& options(const QString& frameName, const QString& title, std::initializer_list<OptionItem> items,
                    const Operation& chosen = {});
    Layout& check(const QString& name, desk::Check& value, const QString& caption, const Operation& chosen = {});
    // chosen runs on a click and on Enter.
    Layout& list(const QString& name, desk::List& value, int width, int lines, const Operation& chosen = {},
                 const QString& heading = {});
    // What is chosen in the list declared last belongs to the record: unsaved it is kept as what is typed.
    Layout& isInput();
    // The last lists scroll together and show the same line as chosen; only the first of them is in the tab order.
    Layout& parallel(int lists);
    // With a button 今日 (F2 in any of the boxes; not in the tab order, where Enter would press it) and a label that
    // says which day it is: the era box's name with 今日 and 曜日 behind it.
    Layout& dates(const DateNames& names, desk::DateGroup& value, desk::DateHelp help);
    // A label that is brought up to date whenever one of the controls is typed into or chosen, and after each
    // operation. What the register refuses meanwhile leaves it empty.
    Layout& live(const QString& name, std::function<LiveText()> text, const std::vector<QString>& controls, int width,
                 int lines = 1);
    Layout& range(const QString& fromName, desk::Text& from, const QString& toName, desk::Text& to,
                  const RangeEvents& events);
    Layout& grid(const QString& name, desk::Grid& value, const GridEvents& events, int visibleRows = 17);
    Layout& button(const QString& name, const QString& caption, Operation operation, const QString& tooltip = {});
    // Any other widget as an item of the row, or as a band of its own that takes the room of the window; the caller
    // binds it.
    Layout& widget(QWidget* widget);
    Layout& fill(QWidget* widget);

    // The row of buttons at the bottom. The main action wears the accent; where there is one that updates, that one
    // wears it as soon as a record is shown.
    Layout& mainAction(const QString& name, const QString& caption, Operation operation);
    Layout& updating(const QString& name, const QString& caption, Operation operation);
    Layout& action(const QString& name, const QString& caption, Operation operation, const QString& tooltip = {});
    // The button declared last cannot be pressed as long as there is a reason, which its tooltip then tells.
    Layout& restsBecause(std::function<QString()> reason);
    Layout& gap();                                                    // what follows stands apart
    Layout& closing(const QString& caption = QStringLiteral("終了")); // the button 終了, at the right end

    // Runs when the keyboard leaves the control declared last for another control of the screen.
    Layout& onLeave(Operation operation);
    QWidget* last() const { return last_; }

  private:
    void place(QWidget* widget);
    void label(QWidget* widget);
    void speak(QWidget* widget, const QString& name);
    void fixWidth(QWidget* widget, int characters, int more = 0);
    KeyButton* makeButton(const QString& name, const QString& caption, Operation operation, const QString& tooltip);

    Screen& screen_;
    QWidget* body_;
    QVBoxLayout* bands_;
    BandLayout* band_ = nullptr;
    QGridLayout* rows_ = nullptr;
    FlowLayout* items_ = nullptr; // of the row
    QLabel* label_ = nullptr;
    QString rowName_;
    QString spoken_; // accessible name of the next control: the text before it
    QWidget* bar_;
    FlowLayout* buttons_;
    QWidget* last_ = nullptr;
    desk::Text* text_ = nullptr; // of the text box declared last
    std::vector<QListWidget*> lists_;
    std::vector<std::pair<LiveLabel*, std::vector<QString>>> followed_; // names of controls that may come later
    std::vector<QGridLayout*> shortFrames_;                             // without a grid
    enum class Next { band, beside, below } next_ = Next::band;
    bool grid_ = false; // a grid takes the room that the window gives
};

} // namespace ui
