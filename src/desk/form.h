#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

// The values of a screen's controls. A form is a plain struct of these, its members named as the controls; a rule reads
// and changes it, the kit shows it.
namespace desk {

// Text colours by their number in the classic 16-colour palette.
enum class Colour { black = 0, darkRed = 4, red = 12 };

struct Control {
    Colour colour = Colour::black;
    bool first = false;    // asked to come first in the tab order; taken back when it has been moved
    bool keyboard = false; // asked to take the keyboard when the operation ends
    bool whole = false;    // its text is then chosen whole, so that typing replaces it
    bool question = false; // what was typed into it asked for the record now shown: it is not kept as unsaved

    void moveToFront() { first = keyboard = true; }
};

struct Text : Control {
    QString text;
    bool preset = false; // a kana box filled by the program, for readings to go on from; taken back when shown
};

// A drop-down list with free text.
struct Combo : Control {
    QString text;
    QStringList items;
};

struct Option : Control {
    bool chosen = false;
};

struct Check : Control {
    bool chosen = false;
};

// A list box. keys, where a screen uses them, tell lines of equal text apart (one number a line).
struct List : Control {
    QStringList items;
    int current = -1; // line chosen, from 0; -1 none
    std::vector<int> keys;

    void clear();
    QString currentText() const { return items.value(current); }
    // Chooses the line with this text; none when there is no such line.
    void choose(const QString& text) { current = static_cast<int>(items.indexOf(text)); }
};

enum class Align { left, right, center };

struct GridColumn {
    QString header;
    int twips = 0; // width in 1/1440 inch; 0: the grid's default
    Align align = Align::left;
    Align headerAlign = Align::left;

    bool operator==(const GridColumn&) const = default;
};

// What the cell of a tick shows; the last one where the row cannot be ticked.
inline const QString tickOn = QStringLiteral("☑");
inline const QString tickOff = QStringLiteral("☐");
inline const QString noTick = QStringLiteral("－");

// A grid under a fixed header row. Rows and columns of the user's clicks count as in the register: row 0 is the header,
// data rows from 1; columns from 0.
struct Grid : Control {
    std::vector<GridColumn> columns;
    std::vector<QStringList> rows; // data rows written
    int blankRows = 30;            // rows shown at least, empty ones included
    int highlighted = 0;           // row on the highlight colour (128, 255, 128), 0 none
    int inSight = 0;               // row that is scrolled into sight when the rows are shown, not chosen; 0 none
    int clickedRow = 0;            // of the user's last click; a click below the last row counts as the row after it
    int clickedColumn = 0;
    // Their cells are ticks. Space on the highlighted row is a click on its first tick that can be turned over, Shift
    // and Space on its last one.
    std::vector<int> tickColumns = {};

    // The text of a cell, empty where nothing was written.
    QString cell(int row, int column) const;
};

// The controls of one date input group.
struct DateGroup {
    Combo era;
    Combo year;
    Combo month;
    Combo day;
    Text western; // "yyyy/mm/dd"

    // Nothing stands in the four era boxes.
    bool isEmpty() const {
        return era.text.isEmpty() && year.text.isEmpty() && month.text.isEmpty() && day.text.isEmpty();
    }
    // Empties the five boxes, leaving lists and marks.
    void clear();
    // Copies the four era boxes; the Western box too, unless the source's is empty.
    void copyFrom(const DateGroup& source);
};

// One call for each control of a group of options or lists that change together.
template <class... Controls> void paint(Colour colour, Controls&... controls) {
    ((controls.colour = colour), ...);
}

} // namespace desk
