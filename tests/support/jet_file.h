#pragma once

#include "store/schema.h"

#include <QByteArray>
#include <QString>

#include <variant>
#include <vector>

// Writes a small Jet 4 database (what Access 2000 writes), so far as its tables are concerned: pages, table
// definitions, rows, long texts on pages of their own. No indexes, no saved queries, 500 pages at most.
class JetFile {
  public:
    enum Type { wholeShort = 3, wholeLong = 4, real = 7, moment = 8, text = 10, picture = 11, longText = 12 };
    struct Column {
        QString name;
        Type type;
    };
    using Cell = std::variant<std::monostate, QString, qint64, double>; // Null; double: a number or days
    using Row = std::vector<Cell>;

    JetFile();
    // Every fifth text is written packed where it can be. deleted: rows marked as deleted, behind the others.
    void add(const QString& table, const std::vector<Column>& columns, const std::vector<Row>& rows, int deleted = 0);
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

    QByteArray rowBytes(const std::vector<Column>& columns, const Row& row);
    QByteArray longTextHead(const QByteArray& bytes);
    quint32 addPage(const QByteArray& page);
    void addTable(quint32 definition, const std::vector<Column>& columns, const std::vector<Row>& rows, int deleted);

    std::vector<QByteArray> pages_;
    std::vector<Row> catalog_;
    int texts_ = 0;
};
