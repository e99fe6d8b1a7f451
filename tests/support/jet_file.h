#pragma once

#include "store/schema.h"

#include <QByteArray>
#include <QString>

#include <variant>
#include <vector>

// Writes a small Jet database (Access 97, encoded, or Access 2000), so far as its tables are concerned: pages, table
// definitions, rows, long texts on pages of their own. No saved queries, 500 pages at most. What a file can have in
// more than one form comes in all of them: every fifth text is packed where it can be, every seventh row has moved to
// another page, every second table lists its pages on a page of their own.
class JetFile {
  public:
    enum class Version { access97, access2000 };
    enum Type {
        yesNo = 1,
        wholeShort = 3,
        wholeLong = 4,
        real = 7,
        moment = 8,
        text = 10,
        picture = 11,
        longText = 12
    };
    struct Column {
        QString name;
        Type type;
        bool dropped = false;  // later: the rows keep its values, its number and its place
        std::size_t since = 0; // the first row that was written when the column was there; added ones come last
    };
    using Cell = std::variant<std::monostate, QString, qint64, double>; // Null; double: a number or days
    using Row = std::vector<Cell>;

    explicit JetFile(Version version = Version::access2000);
    // deleted: rows marked as deleted, behind the others.
    void add(const QString& table, const std::vector<Column>& columns, const std::vector<Row>& rows, int deleted = 0);
    // The file whole. Nothing can be added afterwards.
    QByteArray bytes();
    void write(const QString& path);

    // A table of the register with its columns in their usual types.
    template <class Record> static std::vector<Column> columns() {
        std::vector<Column> all;
        std::apply(
            [&](auto... field) {
                (all.push_back({QString::fromUtf8(field.name), typeOf(Record().*field.member)}), ...);
            },
            store::Description<Record>::fields);
        return all;
    }
    template <class Record> static Row row(const Record& record) {
        Row cells;
        std::apply([&](auto... field) { (cells.push_back(cell(record.*(field.member))), ...); },
                   store::Description<Record>::fields);
        return cells;
    }
    static double days(QDate date) { return static_cast<double>(QDate(1899, 12, 30).daysTo(date)); }

  private:
    static Type typeOf(const QString&) { return text; }
    static Type typeOf(QDate) { return moment; }
    static Type typeOf(std::int16_t) { return wholeShort; }
    static Type typeOf(std::optional<std::int16_t>) { return wholeShort; }
    static Type typeOf(std::optional<std::int32_t>) { return wholeLong; }
    static Cell cell(const QString& value) { return value.isNull() ? Cell() : Cell(value); }
    static Cell cell(QDate value) { return value.isValid() ? Cell(days(value)) : Cell(); }
    static Cell cell(std::int16_t value) { return qint64{value}; }
    template <class T> static Cell cell(const std::optional<T>& value) { return value ? Cell(qint64{*value}) : Cell(); }

    struct Layout;
    QByteArray stored(const QString& text) const;
    QByteArray rowBytes(const std::vector<Column>& columns, const Row& row, std::size_t number);
    QByteArray longTextHead(const QByteArray& bytes);
    QByteArray dataPage(quint32 owner, const std::vector<std::pair<QByteArray, int>>& rows) const;
    quint32 addPage(const QByteArray& page);
    quint32 addMap(const std::vector<quint32>& pages);
    void addTable(quint32 definition, const std::vector<Column>& columns, const std::vector<Row>& rows, int deleted);

    const Layout& layout_;
    std::vector<QByteArray> pages_;
    std::vector<Row> catalog_;
    int texts_ = 0;
    int rows_ = 0;
    int maps_ = 0;
};
