#pragma once

#include <QByteArray>
#include <QDate>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

// Reads the tables of a Jet database (Access 97 and later). Texts and long texts are decoded here, strictly.
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

class Database {
  public:
    // Throws std::runtime_error when the file is no Jet database or cannot be read.
    explicit Database(const QString& path);
    ~Database();

    struct Table {
        QString name;
        std::vector<QString> columns;
        int rows = 0; // as the file counts them
    };
    std::vector<Table> tables();
    // Calls the function for every row of the table, values in the order of its columns.
    void read(const Table& table, const std::function<void(const std::vector<Value>&)>& row);

  private:
    struct Handle;
    std::unique_ptr<Handle> handle_;
};

} // namespace jet
