#pragma once

#include "store/database.h"

namespace store {

// A connection's long run of short writes. While it lasts the register keeps a write-ahead log, where the file's place
// allows one, so that a short write costs no wait for the disk: a killed program loses no committed write, a power cut
// may lose the last ones. Ends in the rollback journal and on the disk again. No statement of the connection may be
// open at either end.
class BulkWrites {
  public:
    explicit BulkWrites(Database& database);
    ~BulkWrites();
    BulkWrites(const BulkWrites&) = delete;
    BulkWrites& operator=(const BulkWrites&) = delete;

    // Everything written is on the disk and in one file afterwards. Throws where that fails; what has been committed
    // stays all the same.
    void finish();

  private:
    SQLite::Database& engine_;
    bool open_ = true;
};

} // namespace store
