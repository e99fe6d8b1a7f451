#include "values/single_line.h"

#include <utility>

namespace values {

namespace {

bool breaksLine(QChar c) {
    return c == u'\n' || c == u'\r' || c == u'\t' || c == u'\v' || c == u'\f' || c == QChar(0x85) ||
           c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

bool turnsDirection(QChar c) {
    return (c >= QChar(0x200e) && c <= QChar(0x200f)) || (c >= QChar(0x202a) && c <= QChar(0x202e)) ||
           (c >= QChar(0x2066) && c <= QChar(0x2069));
}

// Looks at one code unit that is no half of a character.
bool isPrinted(QChar c) {
    return c.category() != QChar::Other_Control && !turnsDirection(c) && c != QChar::ByteOrderMark &&
           !QChar::isNonCharacter(c.unicode());
}

} // namespace

bool isSingleLine(QStringView text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
        else if (text[i].isSurrogate() || breaksLine(text[i]) || !isPrinted(text[i]))
            return false;
    }
    return true;
}

QString singleLine(QStringView text) {
    if (isSingleLine(text))
        return text.toString();
    QString line;
    line.reserve(text.size());
    bool broken = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (breaksLine(c)) {
            while (line.endsWith(u' '))
                line.chop(1);
            broken = !line.isEmpty();
            continue;
        }
        if (c == u' ' && (broken || line.isEmpty()))
            continue;
        const bool pair = c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (!pair && (c.isSurrogate() || !isPrinted(c)))
            continue;
        if (std::exchange(broken, false))
            line += u' ';
        line += c;
        if (pair)
            line += text[++i];
    }
    return line;
}

} // namespace values
