#include "printing/label_sheet.h"

#include <QList>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace printing {
namespace {

constexpr int labelsPerSheet = 12;
constexpr double leftEdge = 25.0;
constexpr double columnPitch = 83.8;
constexpr double rowPitch = 43.2;
constexpr double linePitch = 5.0;
// Address line 2 and the three lines under it that still lie on the label.
constexpr std::size_t linesOfAddress2 = 4;

// The text as it can be set: control characters (a line break, a tab) as blanks, what the font lacks as 〓 and, each
// once, in `missing`. Joiners and variation selectors have no glyph of their own and stay.
QString settable(const QString& text, const LabelFont& font, QString& missing) {
    QString set;
    set.reserve(text.size());
    for (const char32_t c : text.toUcs4()) {
        const QString character = QString::fromUcs4(&c, 1);
        const QChar::Category category = QChar::category(c);
        if (category == QChar::Other_Control || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph) {
            set += u' ';
        } else if (category == QChar::Other_Format || category == QChar::Mark_NonSpacing || font.canPrint(c)) {
            set += character;
        } else {
            set += u'〓';
            if (!missing.contains(character))
                missing += character;
        }
    }
    return set;
}

QString withoutTrailingBlanks(QStringView text) {
    while (!text.isEmpty() && text.back().isSpace())
        text.chop(1);
    return text.toString();
}

// Breaks one text where the language allows it, inside a word only when the word alone is wider than the room. Blanks
// at a break hang over the edge. No more of the text is measured than what the lines hold, however long it is.
class LineBreaker {
  public:
    LineBreaker(const QString& text, const LabelFont& font)
        : text_(text), font_(font), breaks_(QTextBoundaryFinder::Line, text) {
        QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, text);
        while (letters.toNextBoundary() > 0)
            ends_.push_back(letters.position());
    }

    // Lays the text out in lines of this room, in millimetres at 10 points. The lines joined are the text: where they
    // are too few, the last one takes the rest. True when every line fits.
    bool lay(double room, std::vector<QString>& lines) {
        lines.clear();
        qsizetype start = 0;
        while (start < text_.size() && lines.size() < linesOfAddress2) {
            const qsizetype end = endOfLine(start, room);
            lines.push_back(text_.sliced(start, end - start));
            start = end;
        }
        lines.back() += QStringView(text_).sliced(start);
        return start == text_.size();
    }

  private:
    qsizetype endOfLine(qsizetype start, double room) {
        const auto first = std::upper_bound(ends_.begin(), ends_.end(), start);
        const auto fits = [&](qsizetype end) {
            return font_.width(withoutTrailingBlanks(QStringView(text_).sliced(start, end - start))) <= room;
        };
        // A longer piece is the wider one: strides find one that is too wide, halving finds the last that fits.
        auto good = first;
        auto wide = ends_.end();
        for (std::ptrdiff_t stride = 32; wide - good > 1; stride *= 2) {
            const auto next = good + std::min(stride, wide - good - 1);
            if (!fits(*next)) {
                wide = next;
                break;
            }
            good = next;
        }
        while (wide - good > 1) {
            const auto middle = good + (wide - good) / 2;
            (fits(*middle) ? good : wide) = middle;
        }
        breaks_.setPosition(*good);
        return !breaks_.isAtBoundary() && breaks_.toPreviousBoundary() > start ? breaks_.position() : *good;
    }

    const QString& text_;
    const LabelFont& font_;
    QTextBoundaryFinder breaks_;
    std::vector<qsizetype> ends_; // of the letters
};

} // namespace

QString LabelRun::printLabel(const LabelAddress& address) {
    ++lbl_cnt;
    if (lbl_cnt > labelsPerSheet)
        lbl_cnt = 1;
    if (lbl_cnt == 1)
        sheets_.emplace_back();
    lbl_col = lbl_col == 1 ? 0 : 1;

    const double x = lbl_col * columnPitch + leftEdge;
    const double top = (lbl_col == 0 ? lbl_cnt : lbl_cnt - 1) / 2.0 * rowPitch;
    QString missing;
    putFitted(x, top + linePitch, settable(address.lbl_yubin, font_, missing));
    putFitted(x, top + 2 * linePitch, settable(address.lbl_toshug, font_, missing));
    putFitted(x, top + 3 * linePitch, settable(address.lbl_jyusho1, font_, missing));
    putBroken(x, top + 4 * linePitch, settable(address.lbl_jyusho2, font_, missing));
    return missing;
}

void LabelRun::putFitted(double x, double top, const QString& text) {
    if (text.isEmpty())
        return;
    const double width = font_.width(withoutTrailingBlanks(text));
    const double points = width > textRoom ? std::max(leastPoints, fullPoints * textRoom / width) : fullPoints;
    const double setWidth = width * points / fullPoints;
    sheets_.back().push_back({x, top, points, setWidth > textRoom ? textRoom / setWidth : 1.0, text});
}

void LabelRun::putBroken(double x, double top, const QString& text) {
    double points = fullPoints;
    std::vector<QString> lines;
    if (font_.width(withoutTrailingBlanks(text)) <= textRoom) {
        if (!text.isEmpty())
            lines.push_back(text);
    } else {
        LineBreaker breaker(text, font_);
        const auto fitsAt = [&](double size) { return breaker.lay(textRoom * fullPoints / size, lines); };
        if (!fitsAt(fullPoints)) {
            constexpr double step = 0.5;
            // What does not fit at the least size fits at none between.
            points = fitsAt(leastPoints) ? fullPoints - step : leastPoints;
            while (!fitsAt(points) && points > leastPoints)
                points -= step;
        }
    }
    for (const QString& line : lines) {
        const double setWidth = font_.width(withoutTrailingBlanks(line)) * points / fullPoints;
        sheets_.back().push_back({x, top, points, setWidth > textRoom ? textRoom / setWidth : 1.0, line});
        top += linePitch;
    }
}

} // namespace printing
