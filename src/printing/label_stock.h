#pragma once

#include "printing/printed_document.h"

#include <QString>

#include <array>
#include <optional>
#include <span>

namespace printing {

// Where a postcard or an envelope takes an address written vertically, in millimetres from its top left corner and in
// points. Columns of text stand centred on their line and run from top to bottom; the address is set smaller where it
// would not fit, and so is the name.
struct CardPlaces {
    std::array<double, 7> digits; // of the postal code: the middle of each box
    double digitsMiddle;          // height of the boxes' middle
    double digitPoints;
    double address1; // line of address line 1; to its left line 2
    double address2;
    double addressTop;
    double addressBottom;
    double addressPoints;
    double name;
    double nameTop;
    double nameBottom;
    double namePoints;

    bool operator==(const CardPlaces&) const = default;
};

// A kind of sheet that addresses are printed on: where its labels lie and where their texts stand, in millimetres.
// Labels count from 0, left to right, row by row. A postcard or an envelope is a sheet of one label.
struct LabelStock {
    QString key;  // in the user's settings
    QString name; // on the screen
    Paper paper = a4;
    int columns = 1;
    int rows = 1;
    double left = 0; // of the first label, from the paper's edges
    double top = 0;
    double width = 0; // of a label
    double height = 0;
    double columnPitch = 0; // from a label's edge to its neighbour's
    double rowPitch = 0;
    // The text's left edge and the top of its first line within the label, and the width that it may take.
    double textLeft = 0;
    double textTop = 0;
    double textRoom = 0;
    // Where the address is written vertically; the three above mean nothing then.
    std::optional<CardPlaces> card = {};

    int labels() const { return columns * rows; }
    double columnLeft(int column) const { return left + column * columnPitch; }
    double labelLeft(int label) const { return columnLeft(label % columns); }
    double labelTop(int label) const { return top + label / columns * rowPitch; }

    bool operator==(const LabelStock&) const = default;
};

// The sheets known to the program, the register's own (2 × 6) first.
std::span<const LabelStock> labelStocks();
const LabelStock& standardStock();

// The measures of an A4 sheet of the user's own, as he writes them: numbers may be typed full-width.
struct OwnMeasures {
    QString columns = QStringLiteral("2");
    QString rows = QStringLiteral("6");
    QString width = QStringLiteral("83.8"); // of a label, millimetres, as all below
    QString height = QStringLiteral("43.2");
    QString left = QStringLiteral("21.2"); // margins of the sheet
    QString top = QStringLiteral("21.6");
    QString columnGap = QStringLiteral("0");
    QString rowGap = QStringLiteral("0");

    bool operator==(const OwnMeasures&) const = default;
};

inline const QString ownStockKey = QStringLiteral("own");
inline const QString ownStockName = QStringLiteral("自分で決める（A4）");

// The sheet of these measures, or what is wrong with them, as a message to the user.
struct OwnStock {
    std::optional<LabelStock> stock;
    QString fault;
};
OwnStock ownStock(const OwnMeasures& measures);

// The sheet of a key; for the user's own one his measures count. Nothing where there is none, or where it does not fit.
std::optional<LabelStock> stockOf(const QString& key, const OwnMeasures& own);

// The sheet that this user of the computer chose last, kept in his settings with the measures of his own one.
struct KeptStock {
    QString key = standardStock().key;
    OwnMeasures own = {};
};
// What in the settings denotes no sheet counts as the register's own sheet, and stays there as it is.
KeptStock keptStock();
LabelStock stockKept(); // the sheet itself
void keepStock(const KeptStock& kept);

} // namespace printing
