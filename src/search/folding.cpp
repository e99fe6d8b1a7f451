#include "search/folding.h"

#include "store/embedded_data.h"

#include <QHash>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace search {

namespace {

// What the table holds for characters that do not simply become another one. None of these is left by folding.
enum Special : char16_t { dropped, blank, hyphen, longMark, whole }; // whole: its text is normalised first

constexpr char16_t prolonged = u'ー';
constexpr char32_t supplementary = 0x10000;

bool isHyphen(char16_t c) {
    // Brackets part a telephone number as hyphens do.
    return (c >= 0x2010 && c <= 0x2015) || QStringView(u"-−()〔〕[]・･").contains(QChar(c));
}

// The other forms of characters and what each is compared as.
const QHash<char32_t, char32_t>& variants() {
    static const QHash<char32_t, char32_t> all = [] {
        QHash<char32_t, char32_t> read;
        for (const QString& line : QString::fromUtf8(store::embedded_variants).split(u'\n')) {
            if (line.startsWith(u'#'))
                continue;
            const auto forms = line.toUcs4();
            for (qsizetype at = 1; at < forms.size(); ++at)
                read[forms[at]] = forms[0];
        }
        return read;
    }();
    return all;
}

// Of a character that is normalised.
char32_t foldedForm(char32_t c) {
    c = QChar::toCaseFolded(c);
    const bool hiragana = (c >= 0x3041 && c <= 0x3096) || c == 0x309D || c == 0x309E;
    if (hiragana)
        c += 0x60;
    return variants().value(c, c);
}

char16_t normalisedForm(char16_t c) {
    if (QChar::isSpace(c))
        return blank;
    if (c == prolonged)
        return longMark;
    if (isHyphen(c))
        return hyphen;
    switch (QChar::category(c)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Mark_NonSpacing: // variation selectors, marks that belong to no letter
        return dropped;
    default:
        return static_cast<char16_t>(foldedForm(c));
    }
}

// Every character by itself. Those that are more than one when normalised, or that join the one before, need their
// text.
const std::array<char16_t, 0x10000>& forms() {
    static const auto all = std::make_unique<const std::array<char16_t, 0x10000>>([] {
        std::array<char16_t, 0x10000> made{};
        for (std::size_t at = 0; at < made.size(); ++at) {
            const QChar c(static_cast<char16_t>(at));
            const QString normal =
                c.unicode() < 0x80 ? QString(c) : QString(c).normalized(QString::NormalizationForm_KC);
            const bool joins = normal.size() == 1 && normal[0].combiningClass() != 0;
            made[at] =
                normal.size() != 1 || joins || c.isSurrogate() || foldedForm(normal[0].unicode()) >= supplementary
                    ? char16_t{whole}
                    : normalisedForm(normal[0].unicode());
        }
        return made;
    }());
    return *all;
}

// Takes the folded characters of one text, one by one, with what divides it into parts.
class Appender {
  public:
    Appender(Parts parts, std::u16string& text, std::vector<std::size_t>& starts)
        : parts_(parts), text_(text), starts_(starts), begin_(text.size()) {}

    void take(char16_t form) {
        switch (form) {
        case dropped:
            return;
        case blank:
            parted_ |= parts_ == Parts::byBlanks;
            return;
        case longMark:
            if (text_.size() == begin_ || text_.back() < u'0' || text_.back() > u'9') {
                append(prolonged);
                return;
            }
            [[fallthrough]];
        case hyphen:
            parted_ |= parts_ == Parts::byHyphens;
            return;
        default:
            append(form);
        }
    }

  private:
    void append(char16_t c) {
        if (parted_ && text_.size() > begin_)
            starts_.push_back(text_.size());
        parted_ = false;
        text_ += c;
    }

    Parts parts_;
    std::u16string& text_;
    std::vector<std::size_t>& starts_;
    std::size_t begin_;
    bool parted_ = false;
};

void appendNormalised(QStringView stored, Appender& appender) {
    const QString normal = stored.toString().normalized(QString::NormalizationForm_KC);
    for (const char32_t c : normal.toUcs4()) {
        if (c >= supplementary) {
            if (QChar::category(c) == QChar::Mark_NonSpacing)
                continue;
            for (const char16_t half : QChar::fromUcs4(foldedForm(c)))
                appender.take(half);
        } else {
            appender.take(normalisedForm(static_cast<char16_t>(c)));
        }
    }
}

} // namespace

void appendFolded(QStringView stored, Parts parts, std::u16string& text, std::vector<std::size_t>& partStarts) {
    const auto& table = forms();
    Appender appender(parts, text, partStarts);
    if (std::ranges::any_of(stored, [&table](QChar c) { return table[c.unicode()] == whole; })) {
        appendNormalised(stored, appender);
        return;
    }
    for (const QChar c : stored)
        appender.take(table[c.unicode()]);
}

void appendFolded(QStringView stored, std::u16string& text) {
    std::vector<std::size_t> starts;
    appendFolded(stored, Parts::none, text, starts);
}

std::vector<std::u16string> foldedWords(const QString& typed) {
    std::vector<std::u16string> words;
    for (const QString& word : typed.simplified().split(u' ', Qt::SkipEmptyParts)) {
        std::u16string folded;
        appendFolded(word, folded);
        if (!folded.empty() && std::ranges::find(words, folded) == words.end())
            words.push_back(std::move(folded));
    }
    return words;
}

char16_t syllable(char16_t folded) {
    if (folded < u'ァ' || folded > u'ヺ')
        return folded;
    static const auto unvoiced = [] {
        std::array<char16_t, u'ヺ' - u'ァ' + 1> all{};
        for (std::size_t at = 0; at < all.size(); ++at) {
            const QChar c(static_cast<char16_t>(u'ァ' + at));
            const QString parts = c.decomposition();
            all[at] = parts.isEmpty() ? c.unicode() : parts[0].unicode();
        }
        return all;
    }();
    return unvoiced[static_cast<std::size_t>(folded - u'ァ')];
}

} // namespace search
