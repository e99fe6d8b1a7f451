#pragma once

#include "desk/screen_context.h"
#include "store/table.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

// Failures show Japanese texts as they read.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

// A fresh register in a directory of its own, and the record that screens share.
class RegisterFixture : public ::testing::Test {
  protected:
    RegisterFixture();
    ~RegisterFixture() override;

    QString path(const QString& name) const { return directory.filePath(name); }
    void execute(const QString& sql);
    // From now on the engine refuses, with the words "disk full", to write rows of the table that fulfil the condition.
    void refuseRows(const QString& table, const QString& condition);
    // The first column of every row of a query, joined by "|"; rows of several columns join them with ",".
    QString query(const QString& sql);
    template <class Row> std::vector<Row> rowsOf(const std::string& rest = {}) {
        store::Database database;
        return store::selectAll<Row>(database, rest);
    }

    QTemporaryDir directory;
    desk::ScreenContext context;
    const QDate today{2026, 11, 22};
};

// A household that passes every check, with this number.
store::tbl_danka sampleHousehold(std::int16_t number);
