#include "store/own_changes.h"

#include <sqlite3.h>

#include <algorithm>
#include <iterator>

namespace store {

namespace {

constexpr std::size_t mostKept = 256;

struct Log {
    std::vector<ChangedRow> open; // of the transaction in hand
    std::vector<ChangedRow> committed;
    std::uint64_t end = 0; // behind the last of the committed ones
};

Log& changeLog() {
    static Log log;
    return log;
}

void changed(void*, int, const char*, const char* table, sqlite3_int64 rowid) {
    // One more than is kept says that there were too many.
    if (changeLog().open.size() <= mostKept)
        changeLog().open.push_back({table, rowid});
}

int committing(void*) {
    Log& log = changeLog();
    log.end += log.open.size();
    std::ranges::move(log.open, std::back_inserter(log.committed));
    log.open.clear();
    if (log.committed.size() > mostKept)
        log.committed.erase(log.committed.begin(), log.committed.end() - static_cast<std::ptrdiff_t>(mostKept));
    return 0;
}

void rolledBack(void*) {
    changeLog().open.clear();
}

} // namespace

OwnChanges ownChanges(std::uint64_t from) {
    const Log& log = changeLog();
    OwnChanges changes{log.end, false, {}};
    const std::uint64_t wanted = log.end - from;
    if (wanted > log.committed.size())
        changes.everything = true;
    else
        changes.rows.assign(log.committed.end() - static_cast<std::ptrdiff_t>(wanted), log.committed.end());
    return changes;
}

void watchChanges(sqlite3* engine) {
    sqlite3_update_hook(engine, changed, nullptr);
    sqlite3_commit_hook(engine, committing, nullptr);
    sqlite3_rollback_hook(engine, rolledBack, nullptr);
}

} // namespace store
