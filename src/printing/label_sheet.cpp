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
    std::vector<QString> lines = broken(text, textRoom);
    while (lines.size() > linesOfAddress2 && points > leastPoints) {
        points -= 0.5;
        lines = broken(text, textRoom * fullPoints / points);
    }
    if (lines.size() > linesOfAddress2) {
        // Nothing is left out: the last line takes the rest and is set narrower.
        for (std::size_t i = linesOfAddress2; i < lines.size(); ++i)
            lines[linesOfAddress2 - 1] += lines[i];
        lines.resize(linesOfAddress2);
    }
    for (const QString& line : lines) {
        const double setWidth = font_.width(withoutTrailingBlanks(line)) * points / fullPoints;
        sheets_.back().push_back({x, top, points, setWidth > textRoom ? textRoom / setWidth : 1.0, line});
        top += linePitch;
    }
}

// Breaks where the language allows it, inside a word only when the word alone is wider than the room. `room` is in
// millimetres at 10 points. The pieces joined are the text; blanks at a break hang over the edge.
std::vector<QString> LabelRun::broken(const QString& text, double room) const {
    std::vector<QString> lines;
    QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, text);
    QTextBoundaryFinder breaks(QTextBoundaryFinder::Line, text);
    qsizetype start = 0;
    while (start < text.size()) {
        const QStringView rest = QStringView(text).sliced(start);
        qsizetype end = text.size();
        if (font_.width(withoutTrailingBlanks(rest)) > room) {
            letters.setPosition(start);
            end = letters.toNextBoundary();
            for (qsizetype next = letters.toNextBoundary(); next >= 0; next = letters.toNextBoundary()) {
                if (font_.width(withoutTrailingBlanks(rest.first(next - start))) > room)
                    break;
                end = next;
            }
            breaks.setPosition(end);
            if (!breaks.isAtBoundary() && breaks.toPreviousBoundary() > start)
                end = breaks.position();
        }
        lines.push_back(text.sliced(start, end - start));
        start = end;
    }
    return lines;
}

} // namespace printing
