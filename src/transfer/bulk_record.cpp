#include "transfer/bulk_record.h"

#include "store/database.h"
#include "transfer/cp932.h"
#include "values/numbers.h"

#include <QIODevice>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace transfer {

namespace {

constexpr qint64 blockSize = qint64{256} * 1024;
constexpr qsizetype longestLine = 1 << 20; // bytes kept of a record; what is longer is no register's file
constexpr auto byteOrderMark = "\xEF\xBB\xBF"_L1;
constexpr QChar undecodable = QChar::ReplacementCharacter;
constexpr QChar missingGlyph = u'〓'; // what a Japanese printer sets for a character he does not have

bool isBlank(QChar c) {
    return c == u' ' || c == u'\t';
}

QStringView withoutBlanks(QStringView text) {
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

struct Reference {
    qsizetype length = 0; // UTF-16 code units, 0: there is none
    char32_t character = 0;
};

// The character reference that the text begins with.
Reference referenceAt(QStringView text) {
    constexpr qsizetype prefix = 3;
    constexpr qsizetype mostDigits = 6;
    if (!text.startsWith("&#x"_L1, Qt::CaseInsensitive))
        return {};
    const qsizetype end = text.first(std::min(text.size(), prefix + mostDigits + 1)).indexOf(u';');
    if (end <= prefix)
        return {};
    char32_t value = 0;
    for (const QChar c : text.sliced(prefix, end - prefix)) {
        const QLatin1StringView digits = "0123456789abcdef"_L1;
        const qsizetype digit = digits.indexOf(c.toLower());
        if (digit < 0)
            return {};
        value = value * 16 + static_cast<char32_t>(digit);
    }
    if (value == 0 || value > QChar::LastValidCodePoint || QChar::isSurrogate(value))
        return {};
    return {end + 1, value};
}

void readReferencesBack(QString& field) {
    const QStringView written = field;
    QString read;
    qsizetype taken = 0;
    for (qsizetype at = 0; (at = written.indexOf("&#"_L1, at)) >= 0;) {
        const Reference reference = referenceAt(written.sliced(at));
        if (reference.length > 0) {
            read += written.sliced(taken, at - taken);
            read += QStringView(QChar::fromUcs4(reference.character));
            taken = at + reference.length;
        }
        at += std::max<qsizetype>(reference.length, 1);
    }
    if (taken > 0) {
        read += written.sliced(taken);
        field = read;
    }
}

char16_t lookAlike(char16_t unit) {
    switch (unit) {
    case u'\u301C': // 〜
        return u'\uFF5E';
    case u'\u2212': // −
        return u'\uFF0D';
    case u'\u2014': // —
        return u'\u2015';
    case u'\u2016': // ‖
        return u'\u2225';
    case u'\u00A5': // ¥
        return u'\uFFE5';
    default:
        return unit;
    }
}

void appendReference(QByteArray& bytes, char32_t character) {
    bytes += "&#x" + QByteArray::number(static_cast<qulonglong>(character), 16).toUpper() + ';';
}

bool appendField(QByteArray& bytes, QStringView field) {
    bool referred = false;
    const auto refer = [&](char32_t character) {
        appendReference(bytes, character);
        referred = true;
    };
    bytes += '"';
    for (qsizetype at = 0; at < field.size(); ++at) {
        const QChar c = field[at];
        if (c == u'"') {
            bytes += "\"\"";
        } else if (c == u'\r' || c == u'\n' || (c == u'&' && referenceAt(field.sliced(at)).length > 0)) {
            refer(c.unicode());
        } else if (c.isHighSurrogate() && at + 1 < field.size() && field[at + 1].isLowSurrogate()) {
            refer(QChar::surrogateToUcs4(c, field[++at]));
        } else if (const auto held = cp932::encode(lookAlike(c.unicode()))) {
            if (*held > 0xFF)
                bytes += static_cast<char>(*held >> 8);
            bytes += static_cast<char>(*held & 0xFF);
        } else {
            refer(c.isSurrogate() ? undecodable.unicode() : c.unicode());
        }
    }
    bytes += '"';
    return referred;
}

} // namespace

void BulkRecord::reject(const QString& message, std::initializer_list<int> numbers) {
    error = message;
    marked = numbers;
}

bool BulkRecord::rejectIf(bool wrong, const QString& message, std::initializer_list<int> numbers) {
    if (wrong)
        reject(message, numbers);
    return wrong;
}

bool BulkRecord::rejectEmpty(int number, const QString& message) {
    return rejectIf(field(number).isEmpty(), message, {number});
}

std::optional<std::int16_t> BulkRecord::number(int number) const {
    const QString& text = field(number);
    return text.isEmpty() ? std::int16_t{0} : values::readKeyNumber(text);
}

std::vector<QString> BulkRecord::errorLine(std::span<const int> numbers) const {
    std::vector<QString> line;
    line.reserve(numbers.size() + 1);
    for (const int number : numbers) {
        const bool wrong = std::ranges::find(marked, number) != marked.end();
        line.push_back(wrong ? u"**"_s + field(number) : field(number));
    }
    line.push_back(error);
    return line;
}

BulkReader::BulkReader(QIODevice& device, int fieldCount) : device_(device), fieldCount_(fieldCount) {}

bool BulkReader::next(BulkRecord& record) {
    record.error.clear();
    record.marked.clear();
    record.fields.clear();
    if (!readLine())
        return false;
    const bool decoded = decodeLine();
    int count = 0;
    int unmatched = 0;
    split(record, count, unmatched);
    record.fields.resize(static_cast<std::size_t>(fieldCount_));
    if (!decoded) {
        record.reject(u"文字コードに誤りがあります"_s, {});
        for (int number = 1; number <= fieldCount_; ++number) {
            QString& field = record.fields[static_cast<std::size_t>(number - 1)];
            if (field.contains(undecodable))
                record.marked.push_back(number);
            field.replace(undecodable, missingGlyph);
        }
    } else if (count != fieldCount_ || overlong_) {
        record.reject(u"項目数に誤りがあります"_s, {});
    } else if (unmatched > 0) {
        record.reject(u"引用符に誤りがあります"_s, {unmatched});
    }
    return true;
}

// Takes the bytes of the next line, without its end, into line_. A byte of value CR or LF is a line end wherever it
// stands: neither ends a character of two bytes.
bool BulkReader::readLine() {
    line_.resize(0);
    overlong_ = false;
    bool some = false;
    while (at_ < block_.size() || fill()) {
        if (std::exchange(afterCr_, false) && block_[at_] == '\n') {
            ++at_;
            continue;
        }
        some = true;
        const char* const begin = block_.constData() + at_;
        const char* const end = block_.constData() + block_.size();
        const char* const stop = std::find_if(begin, end, [](char c) { return c == '\r' || c == '\n'; });
        const qsizetype length = stop - begin;
        const qsizetype kept = std::min(length, longestLine - line_.size());
        overlong_ = overlong_ || kept < length;
        line_.append(begin, kept);
        at_ += length;
        if (stop != end) {
            afterCr_ = *stop == '\r';
            ++at_;
            return true;
        }
    }
    return some;
}

bool BulkReader::fill() {
    consumed_ += block_.size();
    at_ = 0;
    block_.resize(blockSize);
    const qint64 got = device_.read(block_.data(), blockSize);
    block_.resize(std::max<qint64>(got, 0));
    if (got < 0)
        throw store::Error(
            0, u"入力ファイルを最後まで読めません。ファイルを確認して下さい。\n\n（%1）"_s.arg(device_.errorString()));
    if (!std::exchange(started_, true) && block_.startsWith(byteOrderMark)) {
        utf8_ = true;
        at_ = byteOrderMark.size();
    }
    // A block may hold nothing but the mark.
    return at_ < block_.size() || (!block_.isEmpty() && fill());
}

// Decodes line_ into text_; what cannot be decoded becomes U+FFFD. A NUL is no text: files of other encodings have it.
bool BulkReader::decodeLine() {
    bool good = true;
    if (utf8_) {
        text_ = QString::fromUtf8(line_);
        good = line_.isValidUtf8();
    } else {
        text_.resize(0);
        good = cp932::decode(line_, text_);
    }
    if (text_.contains(QChar(u'\0'))) {
        text_.replace(QChar(u'\0'), undecodable);
        good = false;
    }
    return good;
}

// Splits text_ into fields; gives how many there are and the number of the last one whose quotation marks are wrong, 0
// when none is. Fields beyond the layout's are counted, not kept.
void BulkReader::split(BulkRecord& record, int& count, int& unmatched) {
    const QStringView line = text_;
    const bool referring = line.contains("&#"_L1);
    for (qsizetype at = 0; at >= 0;) {
        ++count;
        while (at < line.size() && isBlank(line[at]))
            ++at;
        QString field;
        const bool quoted = at < line.size() && line[at] == u'"';
        bool closed = quoted;
        if (quoted) {
            for (bool inner = false; at < line.size() && line[at] == u'"'; inner = true) {
                const qsizetype quote = line.indexOf(u'"', at + 1);
                closed = quote >= 0;
                const qsizetype end = closed ? quote : line.size();
                const QStringView piece = line.sliced(at + 1, end - at - 1);
                if (inner)
                    (field += u'"') += piece;
                else
                    field = piece.toString();
                at = closed ? quote + 1 : end;
            }
        }
        const qsizetype comma = line.indexOf(u',', at);
        const QStringView rest = withoutBlanks(comma < 0 ? line.sliced(at) : line.sliced(at, comma - at));
        // Behind a closing quotation mark nothing may follow.
        if (quoted && (!closed || !rest.isEmpty()))
            unmatched = count;
        if (!rest.isEmpty())
            field += rest;
        if (count <= fieldCount_) {
            if (referring)
                readReferencesBack(field);
            // An empty field is a null text, which leaves absent texts of a row absent.
            record.fields.push_back(field.isEmpty() ? QString() : std::move(field));
        }
        at = comma < 0 ? -1 : comma + 1;
    }
}

bool appendRecord(QByteArray& bytes, std::span<const QString> fields) {
    bool referred = false;
    for (const QString& field : fields) {
        if (&field != fields.data())
            bytes += ',';
        referred = appendField(bytes, field) || referred;
    }
    bytes += "\r\n";
    return referred;
}

} // namespace transfer
