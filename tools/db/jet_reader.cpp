#include "jet_reader.h"

#include "store/database.h"
#include "values/cp932.h"

#include <QSet>
#include <QtEndian>

#include <array>
#include <cmath>
#include <numeric>

using namespace Qt::StringLiterals;

namespace jet {

// Sizes and places, in bytes, in which Access 97 and the later versions differ.
struct Format {
    int pageSize;
    int rowCount; // of a data page: how many rows it has; their places follow
    // Of a table's definition:
    int tableRows;
    int widest;
    int columnCount;
    int indexCount;
    int map;
    int columns; // behind as many entries as there are indexes
    int indexEntry;
    int columnEntry;
    // Of the entry of one column:
    int number;
    int variablePlace;
    int scale;
    int flags;
    int fixedPlace;
    int size;
    int wide;   // counts in rows and lengths of names
    int masked; // of the file's head
};

namespace {

constexpr Format jet3{2048, 8, 12, 21, 25, 31, 35, 43, 8, 18, 1, 3, 10, 13, 14, 16, 1, 126};
constexpr Format jet4{4096, 12, 16, 41, 45, 51, 55, 63, 12, 25, 5, 7, 12, 15, 21, 23, 2, 128};

enum Type {
    boolean = 1,
    byte = 2,
    wholeShort = 3,
    wholeLong = 4,
    money = 5,
    single = 6,
    real = 7,
    moment = 8,
    shortText = 10,
    memo = 12,
    decimal = 16
};

constexpr quint32 catalogDefinition = 2;
constexpr quint32 longTexts = 0x4c41564c; // owner of the pages that hold them
constexpr int offsetMask = 0x1fff;        // of a row's place on its page; the bits above mark the row
constexpr int removed = 0x8000;           // also where a moved row stands, which is reached by its old place only
constexpr int movedAway = 0x4000;         // the row's new place stands here
constexpr int longestDefinition = 64;     // pages: far more than 255 columns and 32 indexes need
constexpr int headOfLongText = 12;
constexpr quint32 inlineText = 0x80000000;
constexpr quint32 singlePage = 0x40000000;
constexpr quint32 lengthMask = 0x3fffffff;

[[noreturn]] void damaged() {
    throw store::Error(0,
                       u"以前の登録簿のファイルが壊れているため、読めません。新しい登録簿は作られていません。元のファイ"
                       "ルはそのままです。そのファイルの控えがあれば、控えで試して下さい。"_s);
}

QByteArrayView part(QByteArrayView bytes, qsizetype from, qsizetype size) {
    if (from < 0 || size < 0 || from > bytes.size() || size > bytes.size() - from)
        damaged();
    return bytes.sliced(from, size);
}

template <class T> T number(QByteArrayView bytes, qsizetype at = 0) {
    return qFromLittleEndian<T>(part(bytes, at, sizeof(T)).data());
}

int count(QByteArrayView bytes, qsizetype at, int width) {
    return width == 1 ? number<quint8>(bytes, at) : number<quint16>(bytes, at);
}

// The stream cipher RC4, which masks the file's head with a fixed key and the pages of an encoded file with theirs.
void unmask(QByteArrayView key, char* bytes, qsizetype size) {
    std::array<uchar, 256> state{};
    std::iota(state.begin(), state.end(), uchar{0});
    for (std::size_t i = 0, j = 0; i < state.size(); ++i) {
        j = (j + state[i] + static_cast<uchar>(key[static_cast<qsizetype>(i) % key.size()])) % state.size();
        std::swap(state[i], state[j]);
    }
    for (std::size_t n = 0, i = 0, j = 0; n < static_cast<std::size_t>(size); ++n) {
        i = (i + 1) % state.size();
        j = (j + state[i]) % state.size();
        std::swap(state[i], state[j]);
        bytes[n] = static_cast<char>(bytes[n] ^ state[(state[i] + state[j]) % state.size()]);
    }
}

// Two bytes a character or, behind a mark, one byte where the upper one is zero; a zero byte changes over.
std::optional<QString> unpack(QByteArrayView bytes) {
    const auto plain = [](QByteArrayView units) -> std::optional<QString> {
        if (units.size() % 2)
            return {};
        QString text(units.size() / 2, Qt::Uninitialized);
        qFromLittleEndian<char16_t>(units.data(), text.size(), text.data());
        return text;
    };
    if (!bytes.startsWith("\xff\xfe"))
        return plain(bytes);
    QString text;
    bool packed = true;
    for (qsizetype at = 2; at < bytes.size();) {
        if (bytes[at] == 0) {
            packed = !packed;
            ++at;
        } else if (packed) {
            text += QChar(static_cast<uchar>(bytes[at++]));
        } else {
            const auto unit = plain(bytes.sliced(at, std::min<qsizetype>(2, bytes.size() - at)));
            if (!unit)
                return {};
            text += *unit;
            at += 2;
        }
    }
    return text;
}

// A sign and four words, the highest first, of a whole number that the scale divides.
double decimalNumber(QByteArrayView bytes, int scale) {
    double whole = 0;
    for (qsizetype word = 1; word <= 13; word += 4)
        whole = whole * 4294967296.0 + number<quint32>(bytes, word);
    return (number<quint8>(bytes) ? -whole : whole) / std::pow(10.0, scale);
}

// The bytes of a column's value in the fixed part of a row.
int width(const Column& column) {
    switch (column.type) {
    case byte:
        return 1;
    case wholeShort:
        return 2;
    case wholeLong:
    case single:
        return 4;
    case money:
    case real:
    case moment:
        return 8;
    case decimal:
        return 17;
    default:
        return column.size;
    }
}

// The numbers, from the first one on, whose bits are set.
void collectBits(QByteArrayView bits, quint64 first, quint32 limit, std::vector<quint32>& found) {
    for (qsizetype at = 0; at < bits.size(); ++at)
        for (int bit = 0; bits[at] && bit < 8; ++bit)
            if (bits[at] >> bit & 1) {
                const quint64 number = first + static_cast<quint64>(at) * 8 + static_cast<quint64>(bit);
                if (number >= limit)
                    damaged();
                found.push_back(static_cast<quint32>(number));
            }
}

} // namespace

Database::Database(QIODevice& file) : file_(file) {
    constexpr qsizetype headSize = 0x18 + 128;
    constexpr int newestVersion = 6;
    QByteArray head = file_.read(headSize);
    const int version = head.size() == headSize ? head[0x14] : -1;
    if (!head.startsWith(QByteArrayView("\0\1\0\0", 4)) || version < 0 || version > newestVersion)
        throw store::Error(0, u"Jet データベースではありません。以前の登録簿のファイルか確認して下さい。"_s);
    format_ = version == 0 ? &jet3 : &jet4;
    unmask("\xc7\xda\x39\x6b", head.data() + 0x18, format_->masked);
    key_ = number<quint32>(head, 0x3e);
    pageCount_ = static_cast<quint32>(std::min<qint64>(file_.size() / format_->pageSize, 1 << 24));

    constexpr qint64 userTable = 1;
    constexpr qint64 ofTheSystem = 0x80000002;
    constexpr qint64 pageMask = 0xffffff;
    const Table catalog = describe(catalogDefinition);
    std::array<std::size_t, 4> at{};
    const std::array<QString, 4> names{u"Id"_s, u"Name"_s, u"Type"_s, u"Flags"_s};
    for (std::size_t i = 0; i < names.size(); ++i) {
        at[i] = catalog.columns.size();
        for (std::size_t column = 0; column < catalog.columns.size(); ++column)
            if (catalog.columns[column].name == names[i])
                at[i] = column;
        if (at[i] == catalog.columns.size())
            damaged();
    }
    read(catalog, [&](const std::vector<Value>& values) {
        const auto* id = std::get_if<qint64>(&values[at[0]]);
        const auto* name = std::get_if<QString>(&values[at[1]]);
        const auto* type = std::get_if<qint64>(&values[at[2]]);
        const auto* flags = std::get_if<qint64>(&values[at[3]]);
        if (!type || *type != userTable || (flags && *flags & ofTheSystem))
            return;
        if (!id || !name)
            damaged();
        tables_.push_back(describe(static_cast<quint32>(*id & pageMask)));
        tables_.back().name = *name;
    });
}

QByteArray Database::page(quint64 number) const {
    if (number >= pageCount_ || !file_.seek(static_cast<qint64>(number) * format_->pageSize))
        damaged();
    QByteArray bytes = file_.read(format_->pageSize);
    if (bytes.size() != format_->pageSize)
        damaged();
    if (key_ != 0 && number != 0) {
        const quint32 key = qToLittleEndian(key_ ^ static_cast<quint32>(number));
        unmask(QByteArrayView(reinterpret_cast<const char*>(&key), sizeof key), bytes.data(), bytes.size());
    }
    return bytes;
}

QByteArray Database::dataPage(quint64 number, quint32 owner) const {
    QByteArray bytes = page(number);
    if (bytes[0] != 1 || jet::number<quint32>(bytes, 4) != owner)
        damaged();
    return bytes;
}

// Rows stand from the end of a page towards its beginning.
QByteArrayView Database::row(QByteArrayView page, int number, int& mark) const {
    const int rows = jet::number<quint16>(page, format_->rowCount);
    const int places = format_->rowCount + 2;
    if (number >= rows)
        damaged();
    const auto placeOf = [&](int row) { return jet::number<quint16>(page, places + 2 * row); };
    const int begin = placeOf(number) & offsetMask;
    const int end = number == 0 ? format_->pageSize : placeOf(number - 1) & offsetMask;
    if (begin < places + 2 * rows)
        damaged();
    mark = placeOf(number) & ~offsetMask;
    return part(page, begin, end - begin);
}

Table Database::describe(quint32 definition) const {
    QByteArray bytes;
    int pages = 0;
    for (quint32 next = definition; next != 0; ++pages) {
        const QByteArray one = page(next);
        if (one[0] != 2 || pages == longestDefinition)
            damaged();
        next = number<quint32>(one, 4);
        bytes += pages == 0 ? one : one.sliced(8);
    }
    Table table;
    table.definition = definition;
    table.rows = number<quint32>(bytes, format_->tableRows);
    table.widest = number<quint16>(bytes, format_->widest);
    table.map = number<quint32>(bytes, format_->map);
    const int columns = number<quint16>(bytes, format_->columnCount);
    const qint64 indexes = number<quint32>(bytes, format_->indexCount);
    const qint64 first = format_->columns + indexes * format_->indexEntry;
    qint64 nameAt = first + qint64{columns} * format_->columnEntry;
    QSet<int> numbers;
    for (int i = 0; i < columns; ++i) {
        const QByteArrayView entry = part(bytes, first + qint64{i} * format_->columnEntry, format_->columnEntry);
        Column column;
        column.type = number<quint8>(entry);
        column.number = number<quint16>(entry, format_->number);
        column.fixed = number<quint8>(entry, format_->flags) & 1;
        column.place = number<quint16>(entry, column.fixed ? format_->fixedPlace : format_->variablePlace);
        column.size = number<quint16>(entry, format_->size);
        column.scale = number<quint8>(entry, format_->scale);
        const int length = count(bytes, nameAt, format_->wide);
        column.name = name(part(bytes, nameAt + format_->wide, length));
        nameAt += format_->wide + length;
        if (column.number >= table.widest || numbers.contains(column.number))
            damaged();
        numbers.insert(column.number);
        table.columns.push_back(column);
    }
    return table;
}

std::vector<quint32> Database::pagesOf(const Table& table) const {
    const QByteArray holder = page(table.map >> 8);
    int mark = 0;
    const QByteArrayView map = row(holder, static_cast<int>(table.map & 0xff), mark);
    std::vector<quint32> pages;
    if (number<quint8>(map) == 0) {
        collectBits(part(map, 5, map.size() - 5), number<quint32>(map, 1), pageCount_, pages);
        return pages;
    }
    // Of a large table: the pages that hold the bits.
    constexpr int head = 4;
    const qsizetype bits = format_->pageSize - head;
    for (qsizetype i = 0; 1 + 4 * (i + 1) <= map.size(); ++i) {
        const auto place = number<quint32>(map, 1 + 4 * i);
        if (place == 0)
            continue;
        const QByteArray one = page(place);
        if (one[0] != 5)
            damaged();
        collectBits(part(one, head, bits), static_cast<quint64>(i * bits) * 8, pageCount_, pages);
    }
    return pages;
}

void Database::read(const Table& table, const std::function<void(const std::vector<Value>&)>& row) {
    textsLeft_ = file_.size();
    for (const quint32 number : pagesOf(table)) {
        const QByteArray page = dataPage(number, table.definition);
        const int rows = jet::number<quint16>(page, format_->rowCount);
        for (int i = 0; i < rows; ++i) {
            int mark = 0;
            QByteArrayView bytes = this->row(page, i, mark);
            if (mark & removed)
                continue;
            QByteArray elsewhere;
            if (mark & movedAway) {
                const auto place = jet::number<quint32>(bytes);
                elsewhere = dataPage(place >> 8, table.definition);
                bytes = this->row(elsewhere, static_cast<int>(place & 0xff), mark);
                if (mark & movedAway)
                    damaged();
            }
            row(values(table, bytes));
        }
    }
}

// The number of columns that the table had when the row was written, fixed columns, variable ones with the table of
// their places, and a bit a column that tells whether it is there. A column that was added later is Null; what a
// deleted one left behind is passed over.
std::vector<Value> Database::values(const Table& table, QByteArrayView row) {
    const int columns = count(row, 0, format_->wide);
    const int maskSize = (columns + 7) / 8;
    if (columns > table.widest)
        damaged();
    const QByteArrayView mask = part(row, row.size() - maskSize, maskSize);
    row.chop(maskSize);
    std::vector<Value> values;
    values.reserve(table.columns.size());
    for (const Column& column : table.columns) {
        const bool set = column.number < columns && (mask[column.number / 8] >> column.number % 8 & 1);
        if (column.type == boolean)
            values.emplace_back(qint64{set});
        else if (!set)
            values.emplace_back();
        else if (column.fixed)
            values.push_back(value(column, part(row, format_->wide + column.place, width(column))));
        else
            values.push_back(value(column, variablePart(row, column.place)));
    }
    return values;
}

// Behind the values stand their places, the last one (where the values end) first, and their number. Places of one byte
// tell no more than 255: between places and number stands which columns begin another 256 bytes.
QByteArrayView Database::variablePart(QByteArrayView row, int place) const {
    const qsizetype wide = format_->wide;
    const int variables = count(row, row.size() - wide, format_->wide);
    qsizetype jumps = 0;
    if (wide == 1) {
        // The row's whole length decides how many there are, its mask included; the last one may be of no use.
        const int maskSize = (count(row, 0, 1) + 7) / 8;
        jumps = (row.size() + maskSize - 1) / 256;
    }
    const qsizetype places = row.size() - wide - jumps;
    const qsizetype tableBegin = places - wide * (variables + 1);
    const qsizetype used = wide == 1 ? std::min(jumps, (places - 1 - variables) / 256) : 0;
    const auto placeOf = [&](int variable) {
        qsizetype jumped = 0;
        while (jumped < used && number<quint8>(row, row.size() - 2 - jumped) <= variable)
            ++jumped;
        return count(row, places - wide * (variable + 1), format_->wide) + 256 * jumped;
    };
    if (place >= variables || tableBegin < wide)
        damaged();
    const qsizetype begin = placeOf(place);
    const qsizetype end = placeOf(place + 1);
    if (begin < wide || end > tableBegin)
        damaged();
    return part(row, begin, end - begin);
}

Value Database::value(const Column& column, QByteArrayView bytes) {
    switch (column.type) {
    case byte:
        return qint64{number<quint8>(bytes)};
    case wholeShort:
        return qint64{number<qint16>(bytes)};
    case wholeLong:
        return qint64{number<qint32>(bytes)};
    case money:
        return static_cast<double>(number<qint64>(bytes)) / 10000;
    case single:
        return double{number<float>(bytes)};
    case real:
        return number<double>(bytes);
    case moment:
        return Moment{number<double>(bytes)};
    case decimal:
        return decimalNumber(bytes, column.scale);
    case shortText:
        return text(bytes);
    case memo:
        return longText(bytes);
    default:
        return Unreadable{u"取り込めない型の値です"_s};
    }
}

Value Database::text(QByteArrayView bytes) const {
    if (format_ == &jet3) {
        QString decoded;
        if (values::cp932::decode(bytes, decoded))
            return decoded;
    } else if (const auto unpacked = unpack(bytes); unpacked && unpacked->isValidUtf16()) {
        return *unpacked;
    }
    return Unreadable{u"文字コードに誤りがあります"_s};
}

// Behind its head, in a row of another page, or in a chain of such rows, each of which begins with the next one's
// place.
Value Database::longText(QByteArrayView bytes) {
    const Unreadable lost{u"長い文字列のページを読めません"_s};
    if (bytes.isEmpty())
        return QString(u""_s);
    const auto word = number<quint32>(bytes);
    const qsizetype length = word & lengthMask;
    if (word & inlineText)
        return length > bytes.size() - headOfLongText ? Value(lost) : text(part(bytes, headOfLongText, length));
    if (length > textsLeft_)
        return lost;
    const bool chain = !(word & singlePage);
    QByteArray whole;
    QSet<quint32> seen;
    try {
        for (auto place = number<quint32>(bytes, 4); whole.size() < length;) {
            if (seen.contains(place))
                return lost;
            seen.insert(place);
            const QByteArray holder = dataPage(place >> 8, longTexts);
            int mark = 0;
            const QByteArrayView stored = row(holder, static_cast<int>(place & 0xff), mark);
            if (!chain && stored.size() < length)
                return lost;
            place = chain ? number<quint32>(stored) : 0;
            whole += stored.sliced(chain ? 4 : 0);
            textsLeft_ -= stored.size();
        }
    } catch (const store::Error&) {
        return lost;
    }
    whole.truncate(length);
    return text(whole);
}

QString Database::name(QByteArrayView bytes) const {
    const Value name = text(bytes);
    if (!std::holds_alternative<QString>(name))
        damaged();
    return std::get<QString>(name);
}

} // namespace jet
