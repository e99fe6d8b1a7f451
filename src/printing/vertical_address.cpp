#include "printing/vertical_address.h"

#include "values/numbers.h"

#include <QHash>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace printing {
namespace {

constexpr double millimetresAPoint = 25.4 / 72;
constexpr double halfSquare = 0.5;

// One character, or a word that lies on its side, in squares of the text's size.
struct Cell {
    QString text;
    double length = 1; // along the column
    double right = 0;  // out of the column's middle
    double up = 0;     // out of its square
    bool turned = false;
};
using Cells = std::vector<Cell>;

double lengthOf(const Cells& cells) {
    return std::accumulate(cells.begin(), cells.end(), 0.0,
                           [](double sum, const Cell& cell) { return sum + cell.length; });
}

bool isLatin(QChar c) {
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

bool isDigit(QChar c) {
    return (c >= u'0' && c <= u'9') || (c >= u'０' && c <= u'９');
}

// What people type between the numbers of an address, the long vowel sign among it.
bool isHyphen(QChar c) {
    return QStringView(u"-‐‑–—―−－ー").contains(c);
}

QString fullWidth(QChar c) {
    return QString(QChar(static_cast<char16_t>(c.unicode() + 0xFEE0)));
}

QString fullWidthKana(const QString& text) {
    QString whole;
    for (qsizetype i = 0; i < text.size();) {
        qsizetype end = i;
        while (end < text.size() && text[end] >= u'｡' && text[end] <= u'ﾟ')
            ++end;
        whole += text.sliced(i, end - i).normalized(QString::NormalizationForm_KC);
        i = end;
        if (i < text.size())
            whole += text[i++];
    }
    return whole;
}

// The forms that a font may have for vertical text; where it has none, the character is turned or moved.
struct Form {
    char16_t upright;
    bool point; // it stands in a corner of its square, else it is turned
};
const QHash<char16_t, Form>& forms() {
    static const QHash<char16_t, Form> known{
        {u'、', {u'\uFE11', true}},  {u'。', {u'\uFE12', true}},  {u'，', {u'\uFE10', true}},
        {u'（', {u'\uFE35', false}}, {u'）', {u'\uFE36', false}}, {u'「', {u'\uFE41', false}},
        {u'」', {u'\uFE42', false}}, {u'『', {u'\uFE43', false}}, {u'』', {u'\uFE44', false}},
        {u'〔', {u'\uFE39', false}}, {u'〕', {u'\uFE3A', false}}, {u'【', {u'\uFE3B', false}},
        {u'】', {u'\uFE3C', false}}, {u'〈', {u'\uFE3F', false}}, {u'〉', {u'\uFE40', false}},
        {u'［', {u'\uFE47', false}}, {u'］', {u'\uFE48', false}}, {u'…', {u'\uFE19', false}},
        {u'：', {u'\uFE13', false}},
    };
    return known;
}

// A text as cells. Numbers of an address are written 一二三, each digit for itself.
Cells cellsOf(const QString& text, bool address, const LabelFont& font) {
    static const QString numerals = u"〇一二三四五六七八九"_s;
    Cells cells;
    QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype at = 0; at < text.size();) {
        letters.setPosition(at);
        const qsizetype end = letters.toNextBoundary();
        const QString letter = text.sliced(at, end - at);
        const QChar c = letter.front();
        const bool afterDigit = at > 0 && isDigit(text[at - 1]);
        at = end;
        if (letter.size() > 1) {
            cells.push_back({letter});
        } else if (address && isDigit(c)) {
            cells.push_back({QString(numerals[values::halfWidth(letter).toInt()])});
        } else if (address && isHyphen(c) && afterDigit) {
            cells.push_back({.text = u"－"_s, .turned = true});
        } else if (isLatin(c)) {
            qsizetype last = at;
            while (last < text.size() && isLatin(text[last]))
                ++last;
            const QString word = letter + text.sliced(at, last - at);
            constexpr qsizetype longestUpright = 3;
            if (word.size() <= longestUpright) {
                for (const QChar each : word)
                    cells.push_back({fullWidth(each)});
            } else {
                cells.push_back({.text = word,
                                 .length = font.width(word) / (LabelRun::fullPoints * millimetresAPoint),
                                 .turned = true});
            }
            at = last;
        } else if (c.isSpace()) {
            cells.push_back({.text = {}, .length = halfSquare});
        } else if (isHyphen(c) || QStringView(u"〜～＝").contains(c)) {
            cells.push_back({.text = c == u'-' ? u"－"_s : letter, .turned = true});
        } else if (QStringView(u"ぁぃぅぇぉっゃゅょゎァィゥェォッャュョヮヵヶ").contains(c)) {
            cells.push_back({.text = letter, .right = 0.1, .up = 0.1});
        } else if (const auto form = forms().constFind(c.unicode()); form != forms().cend()) {
            if (font.canPrint(form->upright))
                cells.push_back({QString(QChar(form->upright))});
            else if (form->point)
                cells.push_back({.text = letter, .right = 0.6, .up = 0.6});
            else
                cells.push_back({.text = letter, .turned = true});
        } else if (c > u' ' && c <= u'~') {
            cells.push_back({fullWidth(c)});
        } else {
            cells.push_back({letter});
        }
    }
    return cells;
}

class Writer {
  public:
    Writer(const LabelFont& font, LabelSheet& sheet) : font_(font), sheet_(sheet) {}

    // Writes cells down a line from `top`; each square is this much higher than the text.
    void column(const Cells& cells, double line, double top, double points, double pitch = 1) {
        const double square = points * millimetresAPoint;
        for (const Cell& cell : cells) {
            if (cell.turned) {
                const double edge = line + square * (halfSquare + font_.squareTop());
                sheet_.push_back({edge, top, points, 1.0, cell.text, true});
            } else if (!cell.text.isEmpty()) {
                const double width = font_.width(cell.text) * points / LabelRun::fullPoints;
                sheet_.push_back({line - width / 2 + cell.right * square, top - (font_.squareTop() + cell.up) * square,
                                  points, 1.0, cell.text});
            }
            top += cell.length * square * pitch;
        }
        tight_ = tight_ || (points < LabelRun::leastPoints && !cells.empty());
    }

    // The same from `top` to `bottom`, smaller where it would not fit.
    void fitted(const Cells& cells, double line, double top, double bottom, double points) {
        if (!cells.empty())
            column(cells, line, top, std::min(points, pointsFor(cells, bottom - top)));
    }

    // In the middle of a place, not turned.
    void centred(const QString& text, double x, double y, double points) {
        const double square = points * millimetresAPoint;
        const double width = font_.width(text) * points / LabelRun::fullPoints;
        sheet_.push_back({x - width / 2, y - square * (halfSquare + font_.squareTop()), points, 1.0, text});
    }

    static double pointsFor(const Cells& cells, double room) { return room / lengthOf(cells) / millimetresAPoint; }

    bool tight() const { return tight_; }

  private:
    const LabelFont& font_;
    LabelSheet& sheet_;
    bool tight_ = false;
};

void writePostalCode(const QString& code, const CardPlaces& places, const LabelFont& font, Writer& writer) {
    QString digits;
    for (const QChar c : values::halfWidth(code)) {
        if (c >= u'0' && c <= u'9')
            digits += c;
    }
    if (digits.size() == static_cast<qsizetype>(places.digits.size())) {
        for (std::size_t i = 0; i < places.digits.size(); ++i)
            writer.centred(QString(digits[static_cast<qsizetype>(i)]), places.digits[i], places.digitsMiddle,
                           places.digitPoints);
    } else if (!code.isEmpty()) {
        const double room = places.digits.back() - places.digits.front();
        const double width = font.width(code);
        writer.centred(code, (places.digits.front() + places.digits.back()) / 2, places.digitsMiddle,
                       std::min(places.digitPoints, LabelRun::fullPoints * room / std::max(width, 0.1)));
    }
}

// A long text in two columns: the first one full, rather up to a blank.
std::pair<Cells, Cells> divided(const Cells& cells, double squares) {
    auto end = cells.begin();
    auto blank = cells.begin();
    for (double length = 0; end != cells.end() && length + end->length <= squares; ++end) {
        length += end->length;
        if (end->text.isEmpty() && length > squares / 2)
            blank = end + 1;
    }
    const auto cut = blank != cells.begin() ? blank : end;
    return {{cells.begin(), cut}, {cut, cells.end()}};
}

void writeAddress(const LabelAddress& address, const CardPlaces& places, const LabelFont& font, Writer& writer) {
    Cells first = cellsOf(fullWidthKana(address.lbl_jyusho1).trimmed(), true, font);
    Cells second = cellsOf(fullWidthKana(address.lbl_jyusho2).trimmed(), true, font);
    const double room = places.addressBottom - places.addressTop;
    if (second.empty() && !first.empty() && Writer::pointsFor(first, room) < places.addressPoints) {
        // No column takes more than its share of a text that is longer than both.
        const double squares = room / millimetresAPoint / places.addressPoints;
        std::tie(first, second) = divided(first, std::max(squares, lengthOf(first) / 2 + 1));
    }
    writer.fitted(first, places.address1, places.addressTop, places.addressBottom, places.addressPoints);
    // One square lower, as line 2 goes on from line 1; also where it shares the column's length.
    const double indent = places.addressPoints * millimetresAPoint;
    writer.fitted(second, places.address2, places.addressTop + indent, places.addressBottom, places.addressPoints);
}

void writeName(const QString& name, const CardPlaces& places, const LabelFont& font, Writer& writer) {
    if (name.trimmed().isEmpty())
        return;
    Cells cells = cellsOf(name.trimmed(), false, font);
    const bool addressed = std::ranges::any_of(QStringList{u"様"_s, u"殿"_s, u"御中"_s, u"先生"_s},
                                               [&](const QString& title) { return name.trimmed().endsWith(title); });
    if (!addressed) {
        cells.push_back({.text = {}, .length = halfSquare});
        cells.push_back({u"様"_s});
    }
    const double room = places.nameBottom - places.nameTop;
    constexpr double leastOfOneColumn = 11; // points
    if (const double points = Writer::pointsFor(cells, room); points >= leastOfOneColumn) {
        const double size = std::min(places.namePoints, points);
        constexpr double widest = 1.3;
        writer.column(cells, places.name, places.nameTop, size, std::min(widest, points / size));
        return;
    }
    const auto [first, second] = divided(cells, lengthOf(cells) / 2 + 1);
    const double points =
        std::min({places.namePoints / 2, Writer::pointsFor(first, room), Writer::pointsFor(second, room)});
    const double aside = points * millimetresAPoint * 0.7;
    writer.column(first, places.name + aside, places.nameTop, points);
    writer.column(second, places.name - aside, places.nameTop, points);
}

} // namespace

bool writeVertically(const LabelAddress& address, const CardPlaces& places, const LabelFont& font, LabelSheet& sheet) {
    Writer writer(font, sheet);
    writePostalCode(address.lbl_yubin.trimmed(), places, font, writer);
    writeAddress(address, places, font, writer);
    writeName(address.lbl_toshug, places, font, writer);
    return writer.tight();
}

} // namespace printing
