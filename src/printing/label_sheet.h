#pragma once

#include "printing/label_stock.h"

#include <QString>

#include <vector>

namespace printing {

// The four texts of a label, as stored in the household.
struct LabelAddress {
    QString lbl_yubin;
    QString lbl_toshug;
    QString lbl_jyusho1;
    QString lbl_jyusho2;
};

// One line on a sheet: its left edge and its top in millimetres from the sheet's top left corner, its size in points,
// and the share of its natural width that it is set in (1 unless even the least size does not fit). A turned line is
// read with the right edge of the sheet above: it begins at `top` and runs down, and `x` is its upper edge.
struct LabelLine {
    double x;
    double top;
    double points;
    double widthShare;
    QString text;
    bool turned = false;
};

using LabelSheet = std::vector<LabelLine>;

// What the layout has to know of the font that the labels are printed in.
class LabelFont {
  public:
    virtual ~LabelFont() = default;
    // The width of a text in millimetres at 10 points; at other sizes it grows in proportion.
    virtual double width(const QString& text) const = 0;
    // A quick look: true only when the text is not wider than this room, in millimetres at 10 points.
    virtual bool surelyFits(const QString&, double /*room*/) const { return false; }
    virtual bool canPrint(char32_t character) const = 0;
    // From the top of a line to the square that a full-width character fills, as a share of that square.
    virtual double squareTop() const { return 0; }
};

// What printing a label has to tell.
struct LabelResult {
    QString missing;    // the characters that the font lacks, each once; they stand as 〓
    bool tight = false; // a text is set narrower, or smaller, than is read with ease
};

// Lays labels out on sheets, left to right, row by row. Pure: prints and reads nothing.
class LabelRun {
  public:
    static constexpr double fullPoints = 10.0;
    static constexpr double leastPoints = 6.0;

    // `start`: the first place on the first sheet, from 0; further sheets are filled from their first place.
    explicit LabelRun(const LabelFont& font, LabelStock stock = standardStock(), int start = 0);

    // Puts one label at the next place; an empty text leaves its line empty.
    LabelResult printLabel(const LabelAddress& address);

    const std::vector<LabelSheet>& sheets() const { return sheets_; }
    const LabelStock& stock() const { return stock_; }
    int start() const { return start_; }
    int labels() const { return labels_; }
    bool isEmpty() const { return sheets_.empty(); }

  private:
    void putFitted(double x, double top, const QString& text);
    void putBroken(double x, double top, const QString& text);
    // `fullWidth`: of the text, millimetres at 10 points.
    void put(double x, double top, double points, const QString& text, double fullWidth);

    const LabelFont& font_;
    const LabelStock stock_;
    const int start_;
    std::size_t linesOfAddress2_; // address line 2 and the lines under it that still lie on the label
    std::vector<LabelSheet> sheets_;
    int lbl_cnt = 0; // place of the last label on its sheet, from 1
    int lbl_col = 0; // its column, from 0
    int labels_ = 0;
    bool tight_ = false;
};

} // namespace printing
