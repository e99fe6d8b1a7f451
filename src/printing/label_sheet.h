#pragma once

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

// One line on an A4 sheet: its left edge and its top in millimetres from the sheet's top left corner, its size in
// points (6 to 10), and the share of its natural width that it is set in (1 unless even 6 points do not fit).
struct LabelLine {
    double x;
    double top;
    double points;
    double widthShare;
    QString text;
};

using LabelSheet = std::vector<LabelLine>;

// What the layout has to know of the font that the labels are printed in.
class LabelFont {
  public:
    virtual ~LabelFont() = default;
    // The width of a text in millimetres at 10 points; at other sizes it grows in proportion.
    virtual double width(const QString& text) const = 0;
    virtual bool canPrint(char32_t character) const = 0;
};

// Lays labels out on A4 sheets, twelve a sheet, left then right, row by row. Pure: prints and reads nothing.
class LabelRun {
  public:
    static constexpr double fullPoints = 10.0;
    static constexpr double leastPoints = 6.0;
    // What a line may take before the label's right edge: the two columns of 83.8 mm stand centred on the sheet and the
    // text begins 3.8 mm inside the left one.
    static constexpr double textRoom = 80.0;

    explicit LabelRun(const LabelFont& font) : font_(font) {}

    // Puts one label at the next place; an empty text leaves its line empty. Gives the characters that the font lacks,
    // each once; they stand as 〓 on the label.
    QString printLabel(const LabelAddress& address);

    const std::vector<LabelSheet>& sheets() const { return sheets_; }
    bool isEmpty() const { return sheets_.empty(); }

  private:
    void putFitted(double x, double top, const QString& text);
    void putBroken(double x, double top, const QString& text);

    const LabelFont& font_;
    std::vector<LabelSheet> sheets_;
    int lbl_cnt = 0;
    int lbl_col = 1;
};

} // namespace printing
