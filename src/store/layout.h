#pragma once

#include <SQLiteCpp/Database.h>

#include <QStringList>

// The layout of a register's file: its tables with their columns, its indexes and queries.
namespace store {

// In what a file's layout differs from that of a new register, one Japanese line each.
struct LayoutDifferences {
    QStringList missing;  // tables, columns, indexes and queries
    QStringList other;    // what is there and other than it must be
    QStringList extra;    // what does not belong to a register: tables, columns, indexes, queries, triggers
    bool readable = true; // false when a table or a column is missing, so that rows cannot be read
};

// Throws where damage keeps it from reading.
LayoutDifferences compareLayout(SQLite::Database& engine);

} // namespace store
