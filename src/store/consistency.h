#pragma once

#include "store/database.h"

#include <QStringList>

namespace store {

// Fields that hold text which is none, one Japanese line each. The program never writes such a text: it is damage that
// the engine, which does not look into texts, takes for contents.
QStringList findUnreadableTexts(SQLite::Database& engine);

// What is wrong with the register, one Japanese line each: damage that the engine finds, tables, columns, indexes and
// queries that are missing, other than in a new register or none of it, and rows that contradict one another. Empty
// when all is well. A row whose copy of a household's name differs from the household's own is no fault. Throws where
// damage keeps it from reading on; the lines found until then are added first.
void findFaults(Database& database, QStringList& faults);

} // namespace store
