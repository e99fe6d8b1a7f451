#include "support/jet_file.h"

#include <QFile>
#include <QtEndian>

#include <numeric>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype pageSize = 4096;
constexpr quint32 catalogPage = 2;
constexpr int firstRow = 14; // of a data page: where the places of its rows are listed

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
    return type == JetFile::wholeShort ? 2 : type == JetFile::wholeLong ? 4 : 8;
}

// Rows stand from the end of a page towards its beginning.
QByteArray dataPage(quint32 owner, const std::vector<QByteArray>& rows, int deletedFrom) {
    QByteArray page(pageSize, 0);
    page[0] = 1;
    page[1] = 1;
    put(page, 4, owner);
    put(page, 12, static_cast<quint16>(rows.size()));
    qsizetype end = pageSize;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        end -= rows[i].size();
        page.replace(end, rows[i].size(), rows[i]);
        const auto mark = static_cast<int>(i) >= deletedFrom ? 0xc000 : 0;
        put(page, firstRow + 2 * static_cast<qsizetype>(i), static_cast<quint16>(end | mark));
    }
    return page;
}

// The header page is masked with a fixed key.
void mask(QByteArray& page, qsizetype from, qsizetype count) {
    const uchar key[] = {0xc7, 0xda, 0x39, 0x6b};
    uchar state[256];
    std::iota(std::begin(state), std::end(state), uchar{0});
    for (int i = 0, j = 0; i < 256; ++i) {
        j = (j + state[i] + key[i % 4]) & 255;
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

JetFile::JetFile() : pages_(3, QByteArray(pageSize, 0)) {
    QByteArray& header = pages_[0];
    header.replace(0, 4, QByteArray("\0\1\0\0", 4));
    header.replace(4, 15, "Standard Jet DB");
    header[0x14] = 1;
    mask(header, 0x18, 128);
}

quint32 JetFile::addPage(const QByteArray& page) {
    pages_.push_back(page);
    return static_cast<quint32>(pages_.size() - 1);
}

QByteArray JetFile::longTextHead(const QByteArray& bytes) {
    const auto length = static_cast<quint32>(bytes.size());
    if (length <= 64)
        return little(length | 0x80000000) + QByteArray(8, 0) + bytes;
    constexpr qsizetype part = 4000;
    if (length <= part)
        return little(length | 0x40000000) + little(addPage(dataPage(0x4c41564c, {bytes}, 1)) << 8) + QByteArray(4, 0);
    // A chain, its last part first: each part begins with the place of the next one.
    quint32 next = 0;
    for (qsizetype at = (bytes.size() - 1) / part * part; at >= 0; at -= part)
        next = addPage(dataPage(0x4c41564c, {little(next) + bytes.mid(at, part)}, 1)) << 8;
    return little(length) + little(next) + QByteArray(4, 0);
}

QByteArray JetFile::rowBytes(const std::vector<Column>& columns, const Row& row) {
    QByteArray fixedPart;
    std::vector<QByteArray> variable;
    QByteArray notNull(static_cast<qsizetype>(columns.size() + 7) / 8, 0);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Cell& cell = row[i];
        if (cell.index() != 0)
            setBit(notNull, i);
        QByteArray bytes(fixed(columns[i].type) ? sizeOf(columns[i].type) : 0, 0);
        if (const auto* number = std::get_if<qint64>(&cell))
            bytes = little(*number).left(bytes.size());
        else if (const auto* real = std::get_if<double>(&cell))
            bytes = little(*real);
        else if (const auto* text = std::get_if<QString>(&cell))
            bytes = columns[i].type == longText            ? longTextHead(wide(*text))
                    : ++texts_ % 5 == 0 && packable(*text) ? packed(*text)
                                                           : wide(*text);
        if (fixed(columns[i].type))
            fixedPart += bytes;
        else
            variable.push_back(bytes);
    }
    QByteArray bytes = little(static_cast<quint16>(columns.size())) + fixedPart;
    QByteArray places;
    for (const QByteArray& value : variable) {
        places.prepend(little(static_cast<quint16>(bytes.size())));
        bytes += value;
    }
    if (!variable.empty())
        bytes += little(static_cast<quint16>(bytes.size())) + places + little(static_cast<quint16>(variable.size()));
    return bytes + notNull;
}

void JetFile::addTable(quint32 definition, const std::vector<Column>& columns, const std::vector<Row>& rows,
                       int deleted) {
    const int kept = static_cast<int>(rows.size()) - deleted;
    std::vector<quint32> data;
    std::vector<QByteArray> onPage;
    qsizetype room = pageSize - firstRow;
    int before = 0;
    const auto closePage = [&] {
        data.push_back(addPage(dataPage(definition, onPage, kept - before)));
        before += static_cast<int>(onPage.size());
        onPage.clear();
        room = pageSize - firstRow;
    };
    for (const Row& row : rows) {
        const QByteArray bytes = rowBytes(columns, row);
        if (bytes.size() + 2 > room)
            closePage();
        room -= bytes.size() + 2;
        onPage.push_back(bytes);
    }
    closePage();

    // Which pages are the table's: one bit a page.
    QByteArray used(1 + 4 + 64, 0);
    for (const quint32 page : data)
        setBit(used, 8 * 5 + page);
    const quint32 map = addPage(dataPage(0, {used, used}, 2));

    QByteArray page(pageSize, 0);
    page[0] = 2;
    page[1] = 1;
    put(page, 16, static_cast<quint32>(kept));
    page[40] = definition == catalogPage ? 'S' : 'N';
    quint16 fixedAt = 0;
    quint16 variables = 0;
    QByteArray described;
    QByteArray names;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Column& column = columns[i];
        QByteArray one(25, 0);
        one[0] = static_cast<char>(column.type);
        put(one, 5, static_cast<quint16>(i));
        put(one, 9, static_cast<quint16>(i));
        one[15] = static_cast<char>(fixed(column.type) ? 3 : 2);
        one[16] = 1;
        if (fixed(column.type)) {
            put(one, 21, fixedAt);
            put(one, 23, static_cast<quint16>(sizeOf(column.type)));
            fixedAt = static_cast<quint16>(fixedAt + sizeOf(column.type));
        } else {
            put(one, 7, variables++);
            put(one, 23, static_cast<quint16>(column.type == text ? 510 : 0));
        }
        described += one;
        names += little(static_cast<quint16>(2 * column.name.size())) + wide(column.name);
    }
    put(page, 41, static_cast<quint16>(columns.size()));
    put(page, 43, variables);
    put(page, 45, static_cast<quint16>(columns.size()));
    put(page, 55, map << 8);
    put(page, 59, map << 8 | 1);
    page.replace(63, described.size() + names.size(), described + names);
    put(page, 8, static_cast<quint32>(63 + described.size() + names.size()));
    pages_[definition] = page.left(pageSize);
}

void JetFile::add(const QString& table, const std::vector<Column>& columns, const std::vector<Row>& rows, int deleted) {
    const quint32 definition = addPage(QByteArray(pageSize, 0));
    addTable(definition, columns, rows, deleted);
    catalog_.push_back({qint64{definition}, table, qint64{1}, qint64{0}, {}});
}

void JetFile::write(const QString& path) {
    addTable(catalogPage,
             {{u"Id"_s, wholeLong},
              {u"Name"_s, text},
              {u"Type"_s, wholeShort},
              {u"Flags"_s, wholeLong},
              {u"LvProp"_s, picture}},
             catalog_, 0);
    QFile file(path);
    if (pages_.size() > 500 || !file.open(QIODevice::WriteOnly))
        throw std::runtime_error("the Jet file cannot be written");
    for (const QByteArray& page : pages_)
        file.write(page);
}
