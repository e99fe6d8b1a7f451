#include "reports/report.h"

// Each report is a function in a file of its own.
// A line a report.
// clang-format off
#define HOSHIREN_REPORTS(report) \
    report(年回表) \
    report(祥月命日表) \
    report(檀家名簿) \
    report(お墓台帳) \
    report(法要予定表) \
    report(管理費請求一覧)
// clang-format on

namespace reports {

#define HOSHIREN_DECLARED(name) Report name();
#define HOSHIREN_LISTED(name) name(),

HOSHIREN_REPORTS(HOSHIREN_DECLARED)

qint64 unreadableDates(store::Database& database, const std::string& table, const std::string& column) {
    SQLite::Statement count(database.engine(), "SELECT count(*) FROM " + table + " WHERE " + column +
                                                   " IS NOT NULL AND " + column + " IS NOT date(" + column +
                                                   ", '+0 days');");
    count.executeStep();
    return count.getColumn(0).getInt64();
}

const std::vector<Report>& reports() {
    static const std::vector<Report> all{HOSHIREN_REPORTS(HOSHIREN_LISTED)};
    return all;
}

} // namespace reports
