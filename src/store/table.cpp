#include "store/table.h"

#include <QStringEncoder>

#include <sqlite3.h>

#include <array>
#include <cstdio>

namespace store {

void bindValue(SQLite::Statement& statement, int at, int value) {
    statement.bind(at, value);
}

void bindValue(SQLite::Statement& statement, int at, qint64 value) {
    statement.bind(at, static_cast<std::int64_t>(value));
}

void bindValue(SQLite::Statement& statement, int at, const QString& value) {
    // Reuse one buffer: a bulk run binds a million texts.
    thread_local std::string utf8;
    QStringEncoder encoder(QStringEncoder::Utf8);
    utf8.resize(static_cast<std::size_t>(encoder.requiredSpace(value.size())));
    const char* const end = encoder.appendToBuffer(utf8.data(), value);
    utf8.resize(static_cast<std::size_t>(end - utf8.data()));
    statement.bind(at, utf8);
}

void bindValue(SQLite::Statement& statement, int at, QDate value) {
    if (!value.isValid()) {
        statement.bind(at);
        return;
    }
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", value.year(), value.month(), value.day());
    statement.bind(at, text.data());
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
