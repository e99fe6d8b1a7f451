#include "transfer/bulk_record.h"

#include "store/database.h"
#include "values/cp932.h"
#include "values/numbers.h"

#include <QIODevice>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace transfer {

namespace {

constexpr qint64 blockSize = qint64{256} * 1024;
constexpr qsizetype longestLine = 1 << 20; // bytes kept of a record; what is longer is no register's file
// Lines looked at behind a quotation mark that is not closed on its own line.
constexpr std::size_t mostLinesOfRecord = 64;
constexpr char fileEnd = '\x1A'; // ^Z, with which old programs end a text file, or fill its last block
constexpr qsizetype mostFileEnds = 4096;
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

void appendField(QByteArray& bytes, QStringView field, Altered& altered) {
    const auto refer = [&](char32_t character) {
        appendReference(bytes, character);
        altered.referred = true;
    };
    bytes += '"';
    for (qsizetype at = 0; at < field.size(); ++at) {
        const QChar c = field[at];
        const char16_t written = lookAlike(c.unicode());
        if (c == u'"') {
            bytes += "\"\"";
        } else if (c == u'\r' || c == u'\n' || (c == u'&' && referenceAt(field.sliced(at)).length > 0)) {
            refer(c.unicode());
        } else if (c.isHighSurrogate() && at + 1 < field.size() && field[at + 1].isLowSurrogate()) {
            refer(QChar::surrogateToUcs4(c, field[++at]));
        } else if (const auto held = values::cp932::encode(written)) {
            if (*held > 0xFF)
                bytes += static_cast<char>(*held >> 8);
            bytes += static_cast<char>(*held & 0xFF);
            altered.lookAlikes += written != c.unicode();
        } else {
            refer(c.isSurrogate() ? undecodable.unicode() : c.unicode());
        }
    }
    bytes += '"';
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
    if (!takeLine()) {
        bytesRead_ = consumed_ + at_;
        return false;
    }
    Shape shape = parse(line_.bytes, record);
    const bool joined = joinLines(record, shape);
    bytesRead_ = line_.end;
    const auto markFieldsWith = [this, &record](QChar wrong) {
        for (int number = 1; number <= fieldCount_; ++number) {
            if (record.field(number).contains(wrong))
                record.marked.push_back(number);
        }
    };
    if (!shape.decoded) {
        record.reject(u"文字コードに誤りがあります"_s, {});
        markFieldsWith(undecodable);
        for (QString& field : record.fields)
            field.replace(undecodable, missingGlyph);
    } else if (shape.count != fieldCount_ || line_.overlong) {
        record.reject(u"項目数に誤りがあります"_s, {});
    } else if (shape.wrong > 0) {
        record.reject(u"引用符に誤りがあります"_s, {shape.lastWrong});
    } else if (joined) {
        record.reject(u"項目の中に改行があります"_s, {});
        markFieldsWith(u'\n');
    }
    return true;
}

BulkReader::Shape BulkReader::parse(QByteArrayView bytes, BulkRecord& record) {
    const bool decoded = decode(bytes);
    record.fields.clear();
    Shape shape = split(record);
    shape.decoded = decoded;
    record.fields.resize(static_cast<std::size_t>(fieldCount_));
    return shape;
}

// Where a field is open at the end of line_, the lines that follow may be the rest of it. They are taken for that when
// they make the record complete; a line that is a record by itself is not swallowed by a quotation mark too many.
bool BulkReader::joinLines(BulkRecord& record, Shape& shape) {
    if (!shape.open || shape.wrong > 1 || shape.count > fieldCount_ || line_.overlong)
        return false;
    QByteArray bytes = line_.bytes;
    for (std::size_t more = 0; more < mostLinesOfRecord; ++more) {
        if (more == ahead_.size()) {
            Line following;
            if (!readLine(following))
                return false;
            ahead_.push_back(std::move(following));
        }
        const Line& following = ahead_[more];
        bytes += '\n';
        bytes += following.bytes;
        if (following.overlong || bytes.size() > longestLine)
            return false;
        BulkRecord whole;
        const Shape joined = parse(bytes, whole);
        if (complete(joined)) {
            record.fields = std::move(whole.fields);
            shape = joined;
            line_.end = following.end;
            ahead_.erase(ahead_.begin(), ahead_.begin() + static_cast<std::ptrdiff_t>(more) + 1);
            return true;
        }
        BulkRecord alone;
        if (!joined.open || joined.wrong > 1 || complete(parse(following.bytes, alone)))
            return false;
    }
    return false;
}

// The next line into line_; false at the end.
bool BulkReader::takeLine() {
    if (ahead_.empty())
        return readLine(line_);
    line_ = std::move(ahead_.front());
    ahead_.pop_front();
    return true;
}

// Takes the bytes of the next line, without its end; false at the end of the file, where a last line of nothing but
// blanks is none. A byte of value CR or LF is a line end wherever it stands: neither
// ends a character of two bytes.
bool BulkReader::readLine(Line& line) {
    line.bytes.resize(0);
    line.overlong = false;
    bool some = false;
    bool ended = false;
    while (!ended && !atEnd()) {
        some = true;
        const char* const begin = block_.constData() + at_;
        const char* const end = block_.constData() + block_.size();
        const char* const stop = std::find_if(begin, end, [](char c) { return c == '\r' || c == '\n'; });
        const qsizetype length = stop - begin;
        const qsizetype kept = std::min(length, longestLine - line.bytes.size());
        line.overlong = line.overlong || kept < length;
        line.bytes.append(begin, kept);
        at_ += length;
        ended = stop != end;
        if (ended) {
            afterCr_ = *stop == '\r';
            ++at_;
        }
    }
    line.end = consumed_ + at_;
    const bool blank = std::ranges::all_of(line.bytes, [](char c) { return isBlank(QLatin1Char(c)); });
    return some && !(blank && atEnd());
}

// Whether nothing follows. An LF that belongs to the line end before is passed over.
bool BulkReader::atEnd() {
    while (at_ < block_.size() || fill()) {
        if (!std::exchange(afterCr_, false) || block_[at_] != '\n')
            return false;
        ++at_;
    }
    return true;
}

// Reads the next block, which holds something, or gives false. ^Z at the end of a block wait for what follows: at the
// end of the file they go.
bool BulkReader::fill() {
    do {
        consumed_ += block_.size();
        at_ = 0;
        block_.resize(waitingEnds_ + blockSize);
        std::fill_n(block_.data(), waitingEnds_, fileEnd);
        const qint64 got = device_.read(block_.data() + waitingEnds_, blockSize);
        if (got < 0)
            throw store::Error(0, u"入力ファイルを最後まで読めません。ファイルを確認して下さい。\n\n（%1）"_s.arg(
                                      device_.errorString()));
        if (got == 0) {
            block_.resize(0);
            consumed_ += std::exchange(waitingEnds_, 0);
            return false;
        }
        block_.resize(waitingEnds_ + got);
        waitingEnds_ = 0;
        while (waitingEnds_ < std::min(mostFileEnds, block_.size()) &&
               block_[block_.size() - 1 - waitingEnds_] == fileEnd)
            ++waitingEnds_;
        block_.chop(waitingEnds_);
        if (!std::exchange(started_, true) && block_.startsWith(byteOrderMark)) {
            utf8_ = true;
            at_ = byteOrderMark.size();
        }
    } while (at_ == block_.size());
    return true;
}

// Decodes the bytes into text_; what cannot be decoded becomes U+FFFD. A NUL is no text: files of other encodings have
// it.
bool BulkReader::decode(QByteArrayView bytes) {
    bool good = true;
    if (utf8_) {
        text_ = QString::fromUtf8(bytes);
        good = bytes.isValidUtf8();
    } else {
        text_.resize(0);
        good = values::cp932::decode(bytes, text_);
    }
    if (text_.contains(QChar(u'\0'))) {
        text_.replace(QChar(u'\0'), undecodable);
        good = false;
    }
    return good;
}

// Splits text_ into fields. Those beyond the layout's are counted, not kept.
BulkReader::Shape BulkReader::split(BulkRecord& record) const {
    Shape shape;
    const QStringView line = text_;
    const bool referring = line.contains("&#"_L1);
    for (qsizetype at = 0; at >= 0;) {
        ++shape.count;
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
        if (quoted && (!closed || !rest.isEmpty())) {
            ++shape.wrong;
            shape.lastWrong = shape.count;
        }
        shape.open = quoted && !closed;
        if (!rest.isEmpty())
            field += rest;
        if (shape.count <= fieldCount_) {
            if (referring)
                readReferencesBack(field);
            // An empty field is a null text, which leaves absent texts of a row absent.
            record.fields.push_back(field.isEmpty() ? QString() : std::move(field));
        }
        at = comma < 0 ? -1 : comma + 1;
    }
    return shape;
}

Altered appendRecord(QByteArray& bytes, std::span<const QString> fields) {
    Altered altered;
    for (const QString& field : fields) {
        if (&field != fields.data())
            bytes += ',';
        appendField(bytes, field, altered);
    }
    bytes += "\r\n";
    return altered;
}

} // namespace transfer
