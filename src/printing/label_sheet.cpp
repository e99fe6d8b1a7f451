#include "printing/label_sheet.h"

#include "printing/vertical_address.h"

#include <QList>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <cmath>

namespace printing {
namespace {

constexpr double linePitch = 5.0;

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
    LineBreaker(const QString& text, const LabelFont& font, std::size_t most)
        : text_(text), font_(font), most_(most), breaks_(QTextBoundaryFinder::Line, text) {
        QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, text);
        while (letters.toNextBoundary() > 0)
            ends_.push_back(letters.position());
    }

    // Lays the text out in lines of this room, in millimetres at 10 points. The lines joined are the text: where they
    // are too few, the last one takes the rest. True when every line fits.
    bool lay(double room, std::vector<QString>& lines) {
        lines.clear();
        qsizetype start = 0;
        while (start < text_.size() && lines.size() < most_) {
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
    const std::size_t most_; // lines
    QTextBoundaryFinder breaks_;
    std::vector<qsizetype> ends_; // of the letters
};

} // namespace

LabelRun::LabelRun(const LabelFont& font, LabelStock stock, int start)
    : font_(font), stock_(std::move(stock)), start_(start),
      linesOfAddress2_(static_cast<std::size_t>(
          std::max(1.0, std::floor((stock_.height - stock_.textTop - 3 * linePitch) / linePitch)))) {}

LabelResult LabelRun::printLabel(const LabelAddress& address) {
    lbl_cnt = (start_ + labels_) % stock_.labels() + 1;
    lbl_col = (lbl_cnt - 1) % stock_.columns;
    if (lbl_cnt == 1 || labels_ == 0)
        sheets_.emplace_back();
    ++labels_;
    tight_ = false;

    LabelResult result;
    const auto set = [&](const QString& text) { return settable(text, font_, result.missing); };
    const LabelAddress settableAddress{set(address.lbl_yubin), set(address.lbl_toshug), set(address.lbl_jyusho1),
                                       set(address.lbl_jyusho2)};
    if (stock_.card) {
        result.tight = writeVertically(settableAddress, *stock_.card, font_, sheets_.back());
        return result;
    }
    const double x = stock_.columnLeft(lbl_col) + stock_.textLeft;
    const double top = stock_.labelTop(lbl_cnt - 1) + stock_.textTop;
    putFitted(x, top, settableAddress.lbl_yubin);
    putFitted(x, top + linePitch, settableAddress.lbl_toshug);
    putFitted(x, top + 2 * linePitch, settableAddress.lbl_jyusho1);
    putBroken(x, top + 3 * linePitch, settableAddress.lbl_jyusho2);
    result.tight = tight_;
    return result;
}

void LabelRun::putFitted(double x, double top, const QString& text) {
    if (text.isEmpty())
        return;
    const double room = stock_.textRoom;
    if (font_.surelyFits(text, room)) {
        sheets_.back().push_back({x, top, fullPoints, 1.0, text});
        return;
    }
    const double width = font_.width(withoutTrailingBlanks(text));
    put(x, top, width > room ? std::max(leastPoints, fullPoints * room / width) : fullPoints, text, width);
}

void LabelRun::putBroken(double x, double top, const QString& text) {
    const double room = stock_.textRoom;
    if (text.isEmpty() || font_.surelyFits(text, room)) {
        putFitted(x, top, text);
        return;
    }
    double points = fullPoints;
    std::vector<QString> lines;
    if (font_.width(withoutTrailingBlanks(text)) <= room) {
        lines.push_back(text);
    } else {
        LineBreaker breaker(text, font_, linesOfAddress2_);
        const auto fitsAt = [&](double size) { return breaker.lay(room * fullPoints / size, lines); };
        if (!fitsAt(fullPoints)) {
            constexpr double step = 0.5;
            // What does not fit at the least size fits at none between.
            points = fitsAt(leastPoints) ? fullPoints - step : leastPoints;
            while (!fitsAt(points) && points > leastPoints)
                points -= step;
        }
    }
    for (const QString& line : lines) {
        put(x, top, points, line, font_.width(withoutTrailingBlanks(line)));
        top += linePitch;
    }
}

void LabelRun::put(double x, double top, double points, const QString& text, double fullWidth) {
    const double width = fullWidth * points / fullPoints;
    const double room = stock_.textRoom;
    tight_ = tight_ || width > room;
    sheets_.back().push_back({x, top, points, width > room ? room / width : 1.0, text});
}

} // namespace printing
