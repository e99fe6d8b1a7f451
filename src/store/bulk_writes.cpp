#include "store/bulk_writes.h"

#include <QDeadlineTimer>
#include <QThread>

#include <sqlite3.h>

namespace store {

namespace {

// The engine does not wait here for others who have the file open: a search that reads it goes on and off it.
std::string setJournal(SQLite::Database& engine, const char* mode) {
    constexpr int patience = 2000; // ms
    for (const QDeadlineTimer end(patience);;) {
        try {
            return engine.execAndGet(std::string("PRAGMA journal_mode = ") + mode).getString();
        } catch (const SQLite::Exception& failure) {
            if ((failure.getErrorCode() & 0xff) != SQLITE_BUSY || end.hasExpired())
                throw;
            QThread::msleep(1);
        }
    }
}

} // namespace

BulkWrites::BulkWrites(Database& database) : engine_(database.engine()) {
    if (setJournal(engine_, "WAL") == "wal")
        engine_.exec("PRAGMA synchronous = NORMAL");
}

BulkWrites::~BulkWrites() {
    if (!open_)
        return;
    try {
        setJournal(engine_, "DELETE");
    } catch (const SQLite::Exception&) {
        // The next start brings the file back.
    }
    engine_.tryExec("PRAGMA synchronous = EXTRA");
}

void BulkWrites::finish() {
    setJournal(engine_, "DELETE");
    engine_.exec("PRAGMA synchronous = EXTRA");
    open_ = false;
}

} // namespace store
