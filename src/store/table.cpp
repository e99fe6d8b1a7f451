#include "store/table.h"

#include <sqlite3.h>

namespace store {

void bindValue(SQLite::Statement& statement, int at, int value) {
    statement.bind(at, value);
}

void bindValue(SQLite::Statement& statement, int at, qint64 value) {
    statement.bind(at, static_cast<std::int64_t>(value));
}

void bindValue(SQLite::Statement& statement, int at, const QString& value) {
    statement.bind(at, value.toStdString());
}

void bindValue(SQLite::Statement& statement, int at, QDate value) {
    if (value.isValid())
        statement.bind(at, value.toString(Qt::ISODate).toStdString());
    else
        statement.bind(at);
}

void readValue(const SQLite::Column& column, std::int16_t& value) {
    value = static_cast<std::int16_t>(column.getInt());
}

void readValue(const SQLite::Column& column, qint64& value) {
    value = column.getInt64();
}

void readValue(const SQLite::Column& column, QString& value) {
    value = column.isNull() ? QString() : QString::fromUtf8(column.getText(), column.getBytes());
    if (value.isNull() && !column.isNull())
        value = QLatin1StringView("");
}

void readValue(const SQLite::Column& column, QDate& value) {
    value = column.isNull() ? QDate() : QDate::fromString(QString::fromUtf8(column.getText()), Qt::ISODate);
}

QString kanaIndex(const QString& kana) {
    if (kana.isEmpty())
        return QStringLiteral(" ");
    // A character beyond the basic plane takes two code units.
    return kana.left(kana.at(0).isHighSurrogate() && kana.size() > 1 ? 2 : 1);
}

} // namespace store
