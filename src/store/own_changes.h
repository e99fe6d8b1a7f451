#pragma once

#include <QByteArray>

#include <cstdint>
#include <vector>

struct sqlite3;

namespace store {

struct ChangedRow {
    QByteArray table;
    qint64 rowid = 0;
};

// What this program itself has written into the register and committed since `from`, a place in the order of all its
// changes; 0 is the beginning. Only the latest rows are kept. Belongs to the thread of the operations.
struct OwnChanges {
    std::uint64_t upTo = 0;  // the place to ask from next time
    bool everything = false; // more rows than are kept, or a whole table: rows is empty
    std::vector<ChangedRow> rows;
};
OwnChanges ownChanges(std::uint64_t from);

// Keeps what a connection changes; one that outlives nothing of this program's.
void watchChanges(sqlite3* engine);

} // namespace store
