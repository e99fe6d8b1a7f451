#include "booklet/phrases.h"

#include <QRegularExpression>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace booklet {

namespace {

bool isIn(QStringView characters, QChar c) {
    return characters.contains(c);
}
bool isHiragana(QChar c) {
    return c >= u'\u3041' && c <= u'\u309f';
}
bool isHan(QChar c) {
    return c.script() == QChar::Script_Han;
}
bool opens(QChar c) {
    return isIn(u"「『（［", c);
}
bool closes(QChar c) {
    return isIn(u"」』）］", c);
}

// Of names that are read as one: ［登録］ and 『さがす』, but not the longer 「messages」.
bool insideName(const QString& text, qsizetype place) {
    const qsizetype open = std::max(text.lastIndexOf(u'［', place - 1), text.lastIndexOf(u'『', place - 1));
    if (open < 0)
        return false;
    const qsizetype close = text.indexOf(text[open] == u'［' ? u'］' : u'』', open);
    return close >= place && close - open <= 16;
}

// Whether a line may not end between the character before this place and the one at it.
bool holdsTogether(const QString& text, qsizetype place) {
    const QChar before = text[place - 1];
    const QChar after = text[place];
    if (after.isLowSurrogate())
        return false; // one character
    if (insideName(text, place))
        return true;
    if (before.unicode() < 0x80 || after.unicode() < 0x80) // the toolkit knows how to break what is not Japanese
        return closes(after) || isHiragana(after) || (before.isDigit() && isHan(after));
    if (isIn(u"、。！？／・：→　", before))
        return false;
    if (opens(after) && !opens(before))
        return isHan(before) && after == u'（';
    if (closes(before))
        return isHiragana(after) || isIn(u"、。（", after);
    if (before == u'を')
        return false;
    const bool honorific = isIn(u"おご", after) && place + 1 < text.size() && isHan(text[place + 1]);
    if (honorific && isHiragana(before))
        return false;
    return !isHiragana(before) || isHiragana(after) || isIn(u"おご", before);
}

} // namespace

QString phrasesHeld(const QString& markdown) {
    static const QRegularExpression untouched(u"\\]\\([^)]*\\)|`[^`]*`"_s);
    static const QRegularExpression mark(u"^ *(?:(?:#+|[0-9]+\\.|[-*>]) )?"_s); // of a heading or an item
    QStringList lines = markdown.split(u'\n');
    for (QString& line : lines) {
        QString held;
        qsizetype done = 0;
        const qsizetype marked = mark.match(line).capturedLength();
        const auto hold = [&](qsizetype end) {
            for (; done < end; ++done) {
                if (done > marked && holdsTogether(line, done))
                    held += u'\u2060';
                // A word joiner does not hold at a blank, a blank that does not break does.
                const bool blank = done > marked && line[done] == u' ' && done + 1 < line.size() &&
                                   line[done - 1] != u'|' && (isHiragana(line[done + 1]) || insideName(line, done));
                held += blank ? QChar(QChar::Nbsp) : line[done];
            }
        };
        for (const auto& found : untouched.globalMatch(line)) {
            hold(found.capturedStart());
            held += found.captured();
            done = found.capturedEnd();
        }
        hold(line.size());
        line = held;
    }
    return lines.join(u'\n');
}

} // namespace booklet
