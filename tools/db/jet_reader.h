#pragma once

#include <QIODevice>
#include <QString>

#include <functional>
#include <variant>
#include <vector>

// Reads the tables of a Jet database (Access 97 and later). Texts and long texts are decoded here, strictly. Nothing of
// the file is believed: each place and length is checked before it is used, and the work is bounded by the file's size.
namespace jet {

// Days and times come as days since 1899-12-30, the time of day as the fraction.
struct Moment {
    double days;
};
// A value that has no meaning for a register (a picture, an identifier) or text that cannot be decoded: what it is.
struct Unreadable {
    QString reason;
};
using Value = std::variant<std::monostate, QString, qint64, double, Moment, Unreadable>; // monostate: Null

struct Column {
    QString name;
    int type = 0;
    int number = 0; // in the rows; numbers of deleted columns are never given again
    bool fixed = false;
    int place = 0; // bytes from the beginning of a row's fixed part, or the number among its variable columns
    int size = 0;  // bytes at most
    int scale = 0; // of a decimal number
};

struct Table {
    QString name;
    std::vector<Column> columns;
    qint64 rows = 0;        // as the file counts them
    quint32 definition = 0; // page
    int widest = 0;         // columns that a row has at most, deleted ones included
    quint32 map = 0;        // place of the list of its pages
};

struct Format;

class Database {
  public:
    // The device is open for random reading and stays open as long as this. Throws store::Error when it holds no Jet
    // database or a damaged one.
    explicit Database(QIODevice& file);

    const std::vector<Table>& tables() const { return tables_; }
    // Calls the function for every row of the table, values in the order of its columns. Throws store::Error where the
    // file is damaged.
    void read(const Table& table, const std::function<void(const std::vector<Value>&)>& row);

  private:
    QByteArray page(quint64 number) const;
    QByteArray dataPage(quint64 number, quint32 owner) const;
    QByteArrayView row(QByteArrayView page, int number, int& mark) const;
    Table describe(quint32 definition) const;
    std::vector<quint32> pagesOf(const Table& table) const;
    std::vector<Value> values(const Table& table, QByteArrayView row);
    QByteArrayView variablePart(QByteArrayView row, int place) const;
    Value value(const Column& column, QByteArrayView bytes);
    Value text(QByteArrayView bytes) const;
    Value longText(QByteArrayView bytes);
    QString name(QByteArrayView bytes) const;

    QIODevice& file_;
    const Format* format_ = nullptr;
    quint32 pageCount_ = 0;
    quint32 key_ = 0;      // of the pages of an encoded file
    qint64 textsLeft_ = 0; // bytes that long texts can still hold, since no two share any
    std::vector<Table> tables_;
};

} // namespace jet
