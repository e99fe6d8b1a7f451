#include "targets.h"

#include "calendar/eras.h"
#include "calendar/spoken_date.h"
#include "db/jet_reader.h"
#include "transfer/bulk_record.h"
#include "values/dates.h"
#include "values/numbers.h"

#include <QBuffer>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace fuzz {

namespace {

void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

// A device that gives its bytes in pieces, as a pipe or a network drive does.
class InPieces : public QBuffer {
  public:
    InPieces(QByteArray* bytes, qint64 piece) : QBuffer(bytes), piece_(piece) { open(ReadOnly | Unbuffered); }

  protected:
    qint64 readData(char* data, qint64 size) override { return QBuffer::readData(data, std::min(size, piece_)); }

  private:
    qint64 piece_;
};

struct Read {
    std::vector<QString> fields;
    QString error;
    bool operator==(const Read&) const = default;
};

std::vector<Read> readAll(QByteArray bytes, int fieldCount, qint64 piece) {
    InPieces device(&bytes, piece);
    transfer::BulkReader reader(device, fieldCount);
    transfer::BulkRecord record;
    std::vector<Read> records;
    qint64 before = 0;
    while (reader.next(record)) {
        require(reader.bytesRead() > before && reader.bytesRead() <= bytes.size(), "the place in the file moves on");
        require(record.fields.size() == static_cast<std::size_t>(fieldCount), "a record has its layout's fields");
        before = reader.bytesRead();
        records.push_back({record.fields, record.error});
    }
    require(reader.bytesRead() == bytes.size(), "a file is read to its end");
    return records;
}

// The five characters that an export writes as their look-alikes.
QString withLookAlikes(QString text) {
    constexpr char16_t pairs[][2] = {{u'\u301C', u'\uFF5E'},
                                     {u'\u2212', u'\uFF0D'},
                                     {u'\u2014', u'\u2015'},
                                     {u'\u2016', u'\u2225'},
                                     {u'\u00A5', u'\uFFE5'}};
    for (const auto& [from, to] : pairs)
        text.replace(QChar(from), QChar(to));
    return text;
}

class NoDesk : public desk::Desk {
  public:
    void notify(const QString&, const QString&, desk::Icon) override { ++messages; }
    bool ask(const QString&, const QString&, desk::Preset) override { return false; }
    void inform(const QString&) override {}
    QDate today() const override { return {2026, 11, 22}; }
    void open(const QString&, desk::Opening, std::function<void()>) override {}
    void close() override {}
    std::unique_ptr<desk::Progress> progress(const QString&) override { return {}; }

    int messages = 0;
};

store::Database& eraTable() {
    static const QTemporaryDir folder;
    static const QString path = folder.filePath(u"Hoshiren.mdb"_s);
    static store::Database database = [] {
        store::createRegister(path);
        return store::Database(path);
    }();
    return database;
}

} // namespace

void bulkFile(QByteArrayView bytes) {
    if (bytes.isEmpty())
        return;
    const int choice = static_cast<unsigned char>(bytes.front());
    const int fieldCount = 1 + choice % 16;
    const qint64 piece = 3 + choice / 16; // a byte-order mark comes in one piece
    const QByteArray file = bytes.sliced(1).toByteArray();
    const auto records = readAll(file, fieldCount, file.size() + 1);
    require(records == readAll(file, fieldCount, piece), "records do not depend on how the file comes in");

    QByteArray written;
    std::vector<Read> accepted;
    for (const Read& record : records) {
        if (!record.error.isEmpty())
            continue;
        transfer::appendRecord(written, record.fields);
        accepted.push_back(record);
        for (QString& field : accepted.back().fields)
            field = withLookAlikes(field);
    }
    require(readAll(written, fieldCount, written.size() + 1) == accepted, "an accepted record is read back as it was");
}

constexpr int firstEra = 1504; // of the era table

void typedTexts(QByteArrayView bytes) {
    const QString text = QString::fromUtf8(bytes);
    const auto whole = values::readWhole(text);
    require(!whole || values::isNumeric(text), "what is read as a number is one");
    require(!whole || values::readWhole(u'　' + QString::number(*whole) + u' ') == whole, "a number reads as written");
    const auto narrow = values::readInt16(text);
    require(narrow.has_value() == (whole && *whole >= -32768 && *whole <= 32767), "16-bit numbers are those that fit");
    require(!narrow || *narrow == *whole, "a 16-bit number keeps its value");
    const auto money = values::readMoney(text);
    require(!money || values::readMoney(values::moneyText(*money)) == money, "an amount reads as shown");
    require(values::halfWidth(values::halfWidth(text)) == values::halfWidth(text), "half-width stays half-width");

    const auto date = values::readDate(text);
    require(!date || (date->isValid() && date->year() >= values::firstYear && date->year() <= values::lastYear),
            "a date is one of the register's");
    require(!date || values::readDate(values::dateText(*date)) == date, "a date reads as shown");
    require(!date || !whole, "no text is a date and a number");
    const auto spoken = calendar::readSpoken(eraTable(), text, QDate(2026, 11, 22));
    require(!date || date->year() < firstEra || (spoken && spoken->date == *date), "a Western date is a spoken one");
    require(!spoken || (spoken->date.isValid() && spoken->date.year() >= values::firstYear), "so is one in era form");
    if (spoken) {
        desk::DateGroup group;
        group.era.text = text;
        const bool spread = calendar::spreadSpoken(eraTable(), group, QDate(2026, 11, 22));
        require(spread && calendar::typedDate(eraTable(), group, {}) == spoken->date, "spread it is the same date");
    }
}

void eraRoundTrip(QByteArrayView bytes) {
    constexpr qsizetype dateBytes = 3;
    if (bytes.size() < dateBytes)
        return;
    const auto number = [&bytes](qsizetype at) { return static_cast<unsigned char>(bytes[at]); };
    NoDesk desk;
    std::int16_t error = 0;
    if (const auto date = values::makeDate(number(0) * 256 + number(1), 1 + number(2) % 12, 1 + number(2) / 12)) {
        const auto era = calendar::eraDate(eraTable(), *date);
        require(era.has_value() == (date->year() >= firstEra), "every year from the first era's on has an era");
        if (era) {
            const QString year = calendar::元号変換(eraTable(), era->era, era->year, error, desk);
            require(error == 0 && year == QString::number(date->year()),
                    "an era year is the Western year it came from");
            // The boxes take three digits of an era year.
            if (era->year.size() <= 3)
                require(calendar::readSpoken(eraTable(), era->full, {}).value_or(calendar::SpokenDate()).date == *date,
                        "a date in era form reads as shown");
        }
    }
    require(desk.messages == 0, "nothing is told of what can be converted");

    const QByteArrayView rest = bytes.sliced(dateBytes);
    const QString era = QString::fromUtf8(rest.first(rest.size() / 2));
    const QString year = QString::fromUtf8(rest.sliced(rest.size() / 2));
    const QString western = calendar::元号変換(eraTable(), era, year, error, desk);
    require(western.isEmpty() == (error == 1) && desk.messages == error, "what cannot be converted is told");
}

void jetFile(QByteArrayView bytes) {
    QByteArray copy = bytes.toByteArray();
    QBuffer file(&copy);
    file.open(QIODevice::ReadOnly);
    try {
        jet::Database database(file);
        for (const jet::Table& table : database.tables()) {
            qint64 rows = 0;
            database.read(table, [&](const std::vector<jet::Value>& values) {
                require(values.size() == table.columns.size(), "a row has a value for each column");
                ++rows;
            });
            require(rows <= bytes.size(), "a table has no more rows than the file has bytes");
        }
    } catch (const store::Error&) {
        // A damaged file is refused.
    }
}

} // namespace fuzz
