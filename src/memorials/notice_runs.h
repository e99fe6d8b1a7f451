#pragma once

#include "store/schema.h"
#include "store/table.h"

#include <QDate>

#include <optional>
#include <vector>

// What each 通知処理 marked, kept in a file beside the register, never in it: for 通知取消.
namespace memorials {

// A memorial by its key.
struct NotifiedRow {
    std::int16_t household = 0;
    QString deceased; // secular name
    QDate scheduled;

    static NotifiedRow of(const store::tbl_hohyo& row);
    bool operator==(const NotifiedRow&) const = default;
};

struct NoticeRun {
    QDate day;                     // that was written as the date of notice
    std::vector<NotifiedRow> rows; // in the order of the labels
    // The run was on its way, to the marks or back from them, when it was last heard of: whether the register has them
    // is not known.
    bool open = false;

    bool operator==(const NoticeRun&) const = default;
};

// The runs recorded for the register that operations open, oldest first. Empty where there is no file of them. Throws
// store::Error when there is one that cannot be read.
std::vector<NoticeRun> noticeRuns();

// Writes them: the newest ones, as many as the file is to hold. Durable when it returns. Throws store::Error, with the
// former ones as they were. To be called while no other program can write runs: within a store::Write.
void keepNoticeRuns(std::vector<NoticeRun> runs);

} // namespace memorials
