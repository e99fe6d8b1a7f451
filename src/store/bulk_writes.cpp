#include "store/bulk_writes.h"

namespace store {

BulkWrites::BulkWrites(Database& database) : engine_(database.engine()) {
    const std::string mode = engine_.execAndGet("PRAGMA journal_mode = WAL").getString();
    if (mode == "wal")
        engine_.exec("PRAGMA synchronous = NORMAL");
}

BulkWrites::~BulkWrites() {
    if (!open_)
        return;
    engine_.tryExec("PRAGMA journal_mode = DELETE");
    engine_.tryExec("PRAGMA synchronous = EXTRA");
}

void BulkWrites::finish() {
    engine_.exec("PRAGMA journal_mode = DELETE");
    engine_.exec("PRAGMA synchronous = EXTRA");
    open_ = false;
}

} // namespace store
