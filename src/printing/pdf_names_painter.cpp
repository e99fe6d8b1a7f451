#include "printing/pdf_names_painter.h"

#include <QBuffer>
#include <QHash>
#include <QPainter>
#include <QPdfWriter>
#include <QRawFont>
#include <QRegularExpression>

#include <vector>

using namespace Qt::StringLiterals;

namespace printing {
namespace {

bool isRadical(ushort code) {
    return code >= 0x2E80 && code <= 0x2FDF;
}

// What a radical of this font stands for: the character in use that is drawn with the same glyph.
class Namesakes {
  public:
    explicit Namesakes(const QFont& font) : font_(QRawFont::fromFont(font, QFontDatabase::Japanese)) {
        QString inUse;
        for (char16_t code = 0x4E00; code <= 0x9FFF; ++code)
            inUse += QChar(code);
        const QList<quint32> glyphs = font_.glyphIndexesForString(inUse);
        // As many as characters: all of them lie in the basic plane.
        for (qsizetype i = 0; i < glyphs.size(); ++i) {
            if (glyphs[i] != 0)
                characters_.insert(glyphs[i], inUse[i].unicode());
        }
    }

    ushort of(ushort code) const {
        if (!isRadical(code))
            return code;
        const QList<quint32> glyphs = font_.glyphIndexesForString(QString(QChar(code)));
        return glyphs.isEmpty() ? code : characters_.value(glyphs.front(), code);
    }

  private:
    const QRawFont font_;
    QHash<quint32, ushort> characters_;
};

QByteArray hexadecimal(uint number) {
    return '<' + QByteArray::number(number, 16).toUpper().rightJustified(4, '0') + '>';
}

// A line of a table of names, "<first glyph> <last glyph> <code of the first>" or with a list of codes, made right.
QByteArray renamed(const QByteArray& line, const Namesakes& namesakes) {
    static const QRegularExpression number(u"<([0-9A-Fa-f]{4})>"_s);
    std::vector<uint> codes;
    for (const auto& found : number.globalMatch(QString::fromLatin1(line)))
        codes.push_back(found.captured(1).toUInt(nullptr, 16));
    if (codes.size() < 3 || codes[1] < codes[0])
        return line;
    const std::size_t glyphs = codes[1] - codes[0] + 1;
    const bool running = !line.contains('[');
    QByteArray list;
    bool changed = false;
    for (std::size_t i = 0; i < (running ? glyphs : codes.size() - 2); ++i) {
        const auto code = static_cast<ushort>(running ? codes[2] + i : codes[2 + i]);
        const ushort name = namesakes.of(code);
        changed = changed || name != code;
        list += hexadecimal(name) + ' ';
    }
    return changed ? hexadecimal(codes[0]) + ' ' + hexadecimal(codes[1]) + " [" + list + ']' : line;
}

// The objects of a PDF that name characters, as they should be, by number.
std::vector<std::pair<int, QByteArray>> betterTables(const QByteArray& pdf, const Namesakes& namesakes) {
    static const QByteArray begin = "stream\n";
    static const QByteArray end = "endstream";
    std::vector<std::pair<int, QByteArray>> tables;
    for (qsizetype at = 0; (at = pdf.indexOf("begincmap", at)) >= 0; ++at) {
        const qsizetype open = pdf.lastIndexOf(begin, at) + begin.size();
        const qsizetype close = pdf.indexOf(end, at);
        const qsizetype object = pdf.lastIndexOf(" 0 obj", open);
        const qsizetype start = pdf.lastIndexOf('\n', object) + 1;
        if (open < begin.size() || close < 0 || object < 0)
            continue;
        const QByteArray table = pdf.sliced(open, close - open);
        QByteArrayList lines = table.split('\n');
        for (QByteArray& line : lines) {
            if (line.startsWith('<'))
                line = renamed(line, namesakes);
        }
        if (const QByteArray better = lines.join('\n'); better != table)
            tables.emplace_back(pdf.sliced(start, object - start).toInt(), better);
    }
    return tables;
}

// Whether this toolkit mistakes one for the other at all.
bool mistakes(const QFont& font) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        QPainter painter(&writer);
        painter.setFont(font);
        painter.drawText(QPointF(100, 100), u"目"_s);
    }
    return !buffer.data().toUpper().contains("<76EE>");
}

} // namespace

void nameCharacters(QByteArray& pdf, const QFont& font) {
    static const bool needed = mistakes(font);
    if (!needed)
        return;
    const auto tables = betterTables(pdf, Namesakes(font));
    const qsizetype trailer = pdf.lastIndexOf("trailer");
    const qsizetype dictionary = pdf.indexOf("<<", trailer);
    const qsizetype dictionaryEnd = pdf.indexOf(">>", dictionary);
    const qsizetype startOfTable = pdf.indexOf("startxref", dictionaryEnd);
    if (tables.empty() || trailer < 0 || dictionary < 0 || dictionaryEnd < 0 || startOfTable < 0)
        return;
    const QByteArray facts = pdf.sliced(dictionary + 2, dictionaryEnd - dictionary - 2).trimmed();
    const QByteArray previous = pdf.sliced(startOfTable).split('\n').value(1).trimmed();
    // As the format lets a file be changed: what is new follows, with a table of its own that names the older one.
    QByteArray places = "xref\n";
    for (const auto& [number, table] : tables) {
        places += QByteArray::number(number) + " 1\n" + QByteArray::number(pdf.size()).rightJustified(10, '0') +
                  " 00000 n \n";
        pdf += QByteArray::number(number) + " 0 obj\n<< /Length " + QByteArray::number(table.size()) + " >>\nstream\n" +
               table + "endstream\nendobj\n";
    }
    const QByteArray start = QByteArray::number(pdf.size());
    pdf += places + "trailer\n<< " + facts + " /Prev " + previous + " >>\nstartxref\n" + start + "\n%%EOF\n";
}

} // namespace printing
