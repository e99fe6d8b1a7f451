#include "support/jet_file.h"

#include "values/cp932.h"

#include <QFile>
#include <QtEndian>

#include <numeric>

using namespace Qt::StringLiterals;

// Sizes and places in which the versions differ.
struct JetFile::Layout {
    qsizetype page;
    qsizetype rowCount;
    qsizetype tableRows, tableType, counts, indexes, map, columns;
    qsizetype indexEntry, columnEntry, number, variable, flags, fixed;
    bool wide; // texts and counts of two bytes
    quint32 key;
};

namespace {

constexpr quint32 catalogPage = 2;
constexpr int indexes = 3; // of every table, none of them described
constexpr int deletedRow = 0xc000;
constexpr int movedRow = 0x4000;
constexpr int reachedByItsOldPlace = 0x8000;

template <class T> QByteArray little(T value) {
    QByteArray bytes(sizeof(T), 0);
    qToLittleEndian(value, bytes.data());
    return bytes;
}

template <class T> void put(QByteArray& page, qsizetype at, T value) {
    page.replace(at, sizeof(T), little(value));
}

void setBit(QByteArray& bits, std::size_t bit) {
    const auto at = static_cast<qsizetype>(bit / 8);
    bits[at] = static_cast<char>(bits[at] | 1 << (bit % 8));
}

QByteArray wide(const QString& text) {
    QByteArray bytes;
    for (const QChar unit : text)
        bytes += little(unit.unicode());
    return bytes;
}

// One byte a character below U+0100, two for the others; a zero byte changes over, so that a character whose lower byte
// is zero, the wide blank for one, keeps the text from being packed.
bool packable(const QString& text) {
    return std::none_of(text.begin(), text.end(), [](QChar unit) { return unit.cell() == 0; });
}

QByteArray packed(const QString& text) {
    QByteArray bytes("\xff\xfe");
    bool narrow = true;
    for (const QChar unit : text) {
        const bool fits = unit.unicode() < 0x100;
        if (fits != narrow)
            bytes += '\0';
        narrow = fits;
        bytes += fits ? QByteArray(1, static_cast<char>(unit.unicode())) : little(unit.unicode());
    }
    return bytes;
}

bool fixed(JetFile::Type type) {
    return type < JetFile::text;
}

int sizeOf(JetFile::Type type) {
    return type == JetFile::yesNo ? 0 : type == JetFile::wholeShort ? 2 : type == JetFile::wholeLong ? 4 : 8;
}

void mask(QByteArray& page, qsizetype from, qsizetype count, const QByteArray& key) {
    uchar state[256];
    std::iota(std::begin(state), std::end(state), uchar{0});
    for (int i = 0, j = 0; i < 256; ++i) {
        j = (j + state[i] + static_cast<uchar>(key[i % key.size()])) & 255;
        std::swap(state[i], state[j]);
    }
    for (int n = 0, i = 0, j = 0; n < count; ++n) {
        i = (i + 1) & 255;
        j = (j + state[i]) & 255;
        std::swap(state[i], state[j]);
        page[from + n] = static_cast<char>(page[from + n] ^ state[(state[i] + state[j]) & 255]);
    }
}

} // namespace

JetFile::JetFile(Version version)
    : layout_([version]() -> const Layout& {
          static const Layout access97{2048, 8, 12, 20, 21, 31, 35, 43, 8, 18, 1, 3, 13, 14, false, 0x1234567};
          static const Layout access2000{4096, 12, 16, 40, 41, 51, 55, 63, 12, 25, 5, 7, 15, 21, true, 0};
          return version == Version::access97 ? access97 : access2000;
      }()),
      pages_(3, QByteArray(layout_.page, 0)) {
    QByteArray& header = pages_[0];
    header.replace(0, 4, QByteArray("\0\1\0\0", 4));
    header.replace(4, 15, "Standard Jet DB");
    header[0x14] = layout_.wide ? 1 : 0;
    put(header, 0x3e, layout_.key);
    mask(header, 0x18, layout_.wide ? 128 : 126, "\xc7\xda\x39\x6b");
}

QByteArray JetFile::stored(const QString& text) const {
    if (layout_.wide)
        return wide(text);
    QByteArray bytes;
    for (const QChar unit : text) {
        const quint16 code = values::cp932::encode(unit.unicode()).value();
        if (code > 0xff)
            bytes += static_cast<char>(code >> 8);
        bytes += static_cast<char>(code & 0xff);
    }
    return bytes;
}

// Rows with their marks stand from the end of a page towards its beginning.
QByteArray JetFile::dataPage(quint32 owner, const std::vector<std::pair<QByteArray, int>>& rows) const {
    QByteArray page(layout_.page, 0);
    page[0] = 1;
    page[1] = 1;
    put(page, 4, owner);
    put(page, layout_.rowCount, static_cast<quint16>(rows.size()));
    qsizetype end = layout_.page;
    qsizetype at = layout_.rowCount;
    for (const auto& [bytes, rowMark] : rows) {
        end -= bytes.size();
        page.replace(end, bytes.size(), bytes);
        put(page, at += 2, static_cast<quint16>(end | rowMark));
    }
    return page;
}

quint32 JetFile::addPage(const QByteArray& page) {
    pages_.push_back(page);
    return static_cast<quint32>(pages_.size() - 1);
}

QByteArray JetFile::longTextHead(const QByteArray& bytes) {
    const auto length = static_cast<quint32>(bytes.size());
    if (length <= 64)
        return little(length | 0x80000000) + QByteArray(8, 0) + bytes;
    constexpr quint32 owner = 0x4c41564c;
    const qsizetype part = layout_.page - 50;
    if (length <= part)
        return little(length | 0x40000000) + little(addPage(dataPage(owner, {{bytes, 0}})) << 8) + QByteArray(4, 0);
    // A chain, its last part first: each part begins with the place of the next one.
    quint32 next = 0;
    for (qsizetype at = (bytes.size() - 1) / part * part; at >= 0; at -= part)
        next = addPage(dataPage(owner, {{little(next) + bytes.mid(at, part), 0}})) << 8;
    return little(length) + little(next) + QByteArray(4, 0);
}

QByteArray JetFile::rowBytes(const std::vector<Column>& columns, const Row& row, std::size_t number) {
    QByteArray fixedPart;
    std::vector<QByteArray> variable;
    const auto there = static_cast<std::size_t>(
        std::count_if(columns.begin(), columns.end(), [&](const Column& column) { return column.since <= number; }));
    // The bits behind those of the columns mean nothing.
    QByteArray notNull(static_cast<qsizetype>(there + 7) / 8, 0);
    for (std::size_t i = there; i < static_cast<std::size_t>(notNull.size()) * 8; ++i)
        setBit(notNull, i);
    for (std::size_t i = 0; i < there; ++i) {
        const Cell& cell = row[i];
        const auto* whole = std::get_if<qint64>(&cell);
        if (columns[i].type == yesNo ? whole && *whole != 0 : cell.index() != 0)
            setBit(notNull, i);
        QByteArray bytes(fixed(columns[i].type) ? sizeOf(columns[i].type) : 0, 0);
        if (whole)
            bytes = little(*whole).left(bytes.size());
        else if (const auto* real = std::get_if<double>(&cell))
            bytes = little(*real);
        else if (const auto* text = std::get_if<QString>(&cell))
            bytes = columns[i].type == longText                            ? longTextHead(stored(*text))
                    : layout_.wide && ++texts_ % 5 == 0 && packable(*text) ? packed(*text)
                                                                           : stored(*text);
        if (fixed(columns[i].type))
            fixedPart += bytes;
        else
            variable.push_back(bytes);
    }
    const auto counted = [&](std::size_t value) {
        return little(static_cast<quint16>(value)).left(layout_.wide ? 2 : 1);
    };
    QByteArray bytes = counted(there) + fixedPart;
    std::vector<qsizetype> places;
    for (const QByteArray& value : variable) {
        places.push_back(bytes.size());
        bytes += value;
    }
    if (variable.empty())
        return bytes + notNull;
    places.push_back(bytes.size());
    QByteArray jumps;
    if (!layout_.wide) {
        // Places of one byte: behind them stands which column begins another 256 bytes, as often as the row is long.
        const qsizetype size = bytes.size() + static_cast<qsizetype>(places.size()) + 1 + notNull.size();
        while ((size + jumps.size() - 1) / 256 > jumps.size()) {
            const qsizetype bound = 256 * (jumps.size() + 1);
            const auto first = std::find_if(places.begin(), places.end(), [&](auto place) { return place >= bound; });
            jumps.prepend(first == places.end() ? '\xff' : static_cast<char>(first - places.begin()));
        }
    }
    for (auto place = places.rbegin(); place != places.rend(); ++place)
        bytes += counted(static_cast<std::size_t>(*place));
    return bytes + jumps + counted(variable.size()) + notNull;
}

// Which pages are the table's, one bit a page: in the row itself or on a page to which it points.
quint32 JetFile::addMap(const std::vector<quint32>& pages) {
    QByteArray row(1 + 4 + 64, 0);
    if (++maps_ % 2 == 0) {
        QByteArray bits(layout_.page, 0);
        bits[0] = 5;
        bits[1] = 1;
        for (const quint32 page : pages)
            setBit(bits, 8 * 4 + page);
        row[0] = 1;
        put(row, 1, addPage(bits));
    } else {
        for (const quint32 page : pages)
            setBit(row, 8 * 5 + page);
    }
    return addPage(dataPage(0, {{row, 0}, {row, 0}})) << 8;
}

void JetFile::addTable(quint32 definition, const std::vector<Column>& columns, const std::vector<Row>& rows,
                       int deleted) {
    const std::size_t kept = rows.size() - static_cast<std::size_t>(deleted);
    std::vector<quint32> data;
    std::vector<std::pair<QByteArray, int>> onPage;
    qsizetype room = layout_.page - layout_.rowCount - 2;
    const auto closePage = [&] {
        data.push_back(addPage(dataPage(definition, onPage)));
        onPage.clear();
        room = layout_.page - layout_.rowCount - 2;
    };
    for (std::size_t i = 0; i < rows.size(); ++i) {
        QByteArray bytes = rowBytes(columns, rows[i], i);
        int rowMark = i < kept ? 0 : deletedRow;
        if (i < kept && ++rows_ % 7 == 0) {
            data.push_back(addPage(dataPage(definition, {{bytes, reachedByItsOldPlace}})));
            bytes = little(data.back() << 8);
            rowMark = movedRow;
        }
        if (bytes.size() + 2 > room)
            closePage();
        room -= bytes.size() + 2;
        onPage.emplace_back(bytes, rowMark);
    }
    closePage();
    const quint32 map = addMap(data);

    QByteArray described;
    QByteArray names;
    quint16 fixedAt = 0;
    quint16 variables = 0;
    quint16 left = 0;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Column& column = columns[i];
        QByteArray one(layout_.columnEntry, 0);
        one[0] = static_cast<char>(column.type);
        put(one, layout_.number, static_cast<quint16>(i));
        put(one, layout_.number + 4, left);
        one[layout_.flags] = static_cast<char>(fixed(column.type) ? 3 : 2);
        if (fixed(column.type)) {
            put(one, layout_.fixed, fixedAt);
            put(one, layout_.fixed + 2, static_cast<quint16>(sizeOf(column.type)));
            fixedAt = static_cast<quint16>(fixedAt + sizeOf(column.type));
        } else {
            put(one, layout_.variable, variables++);
            put(one, layout_.fixed + 2, static_cast<quint16>(column.type == text ? 510 : 0));
        }
        if (column.dropped)
            continue;
        ++left;
        const QByteArray name = stored(column.name);
        described += one;
        names += little(static_cast<quint16>(name.size())).left(layout_.wide ? 2 : 1) + name;
    }
    QByteArray page(layout_.columns + indexes * layout_.indexEntry, 0);
    page[0] = 2;
    page[1] = 1;
    put(page, layout_.tableRows, static_cast<quint32>(kept));
    page[layout_.tableType] = definition == catalogPage ? 'S' : 'N';
    put(page, layout_.counts, static_cast<quint16>(columns.size()));
    put(page, layout_.counts + 2, variables);
    put(page, layout_.counts + 4, left);
    put(page, layout_.indexes, quint32{indexes});
    put(page, layout_.map, map);
    put(page, layout_.map + 4, map | 1);
    page += described + names;
    put(page, 8, static_cast<quint32>(page.size()));
    // What has no room on the first page goes on behind the head of another one.
    const QByteArray rest = page.mid(layout_.page);
    if (rest.size() > layout_.page - 8)
        throw std::runtime_error("too many columns");
    if (!rest.isEmpty())
        put(page, 4, addPage((QByteArray("\2\1\0\0\0\0\0\0", 8) + rest).leftJustified(layout_.page, '\0')));
    pages_[definition] = page.left(layout_.page).leftJustified(layout_.page, '\0');
}

void JetFile::add(const QString& table, const std::vector<Column>& columns, const std::vector<Row>& rows, int deleted) {
    const quint32 definition = addPage(QByteArray(layout_.page, 0));
    addTable(definition, columns, rows, deleted);
    catalog_.push_back({qint64{definition}, table, qint64{1}, qint64{0}, {}});
}

QByteArray JetFile::bytes() {
    addTable(catalogPage,
             {{u"Id"_s, wholeLong},
              {u"Name"_s, text},
              {u"Type"_s, wholeShort},
              {u"Flags"_s, wholeLong},
              {u"LvProp"_s, picture}},
             catalog_, 0);
    if (pages_.size() > 500)
        throw std::runtime_error("the Jet file is too large");
    QByteArray all = pages_[0];
    for (std::size_t i = 1; i < pages_.size(); ++i) {
        if (layout_.key)
            mask(pages_[i], 0, layout_.page, little(layout_.key ^ static_cast<quint32>(i)));
        all += pages_[i];
    }
    return all;
}

void JetFile::write(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes()) < 0)
        throw std::runtime_error("the Jet file cannot be written");
}
