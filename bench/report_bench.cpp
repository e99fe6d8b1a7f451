// The year's anniversaries of a full register: the document value beside a bare loop over the same selections, its
// first page on the screen, and 12,000 lines of it as a PDF.
//
//     report_bench REGISTER
#include "compare.h"

#include "memorials/schedule_rules.h"
#include "printing/listing_painter.h"
#include "reports/report.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QWidget>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

constexpr int year = 2027;
constexpr std::size_t linesPrinted = 12'000;

long long readAll(sqlite3* engine, const std::string& text) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(engine, text.c_str(), -1, &statement, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(engine));
    long long bytes = 0;
    while (sqlite3_step(statement) == SQLITE_ROW)
        for (int column = 0; column < sqlite3_column_count(statement); ++column)
            if (sqlite3_column_text(statement, column))
                bytes += sqlite3_column_bytes(statement, column);
    sqlite3_finalize(statement);
    return bytes;
}

void selectByHand(const std::string& path) {
    std::string died;
    for (const auto& each : memorials::AnniversaryTable) {
        const bool days = each.unit == memorials::Unit::days;
        const QDate first = days ? QDate(year, 1, 1).addDays(-each.amount) : QDate(year - each.amount, 1, 1);
        const QDate last = days ? QDate(year, 12, 31).addDays(-each.amount) : QDate(year - each.amount, 12, 31);
        died += (died.empty() ? "tblkak_mei_ymd BETWEEN '" : " OR tblkak_mei_ymd BETWEEN '") +
                first.toString(Qt::ISODate).toStdString() + "' AND '" + last.toString(Qt::ISODate).toStdString() + "'";
    }
    sqlite3* engine = nullptr;
    if (sqlite3_open_v2(path.c_str(), &engine, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK)
        throw std::runtime_error("open");
    const long long bytes =
        readAll(engine,
                "SELECT tblkak_no, tblkak_dnknameg, tblkak_zokunameg, tblkak_kaimyoug, tblkak_mei_ymd, "
                "tblkak_mei_gname, tblkak_mei_gyy, tbldnk_no1, tbldnk_toshug FROM tbl_kakocho LEFT JOIN tbl_danka "
                "ON tbldnk_no1 = tblkak_no AND tbldnk_no2 = 0 WHERE " +
                    died + " ORDER BY tblkak_dnknamek, tblkak_no, tblkak_zokunameg, tblkak_dnknameg") +
        readAll(engine, "SELECT count(*) FROM tbl_kakocho WHERE tblkak_mei_ymd IS NULL") +
        readAll(engine, "SELECT count(*) FROM tbl_kakocho WHERE tblkak_mei_ymd IS NOT NULL AND "
                        "tblkak_mei_ymd IS NOT date(tblkak_mei_ymd, '+0 days')");
    sqlite3_close(engine);
    if (bytes == 0)
        throw std::runtime_error("too few rows");
}

printing::Listing anniversaries() {
    store::Database database;
    return reports::reports().front().make(database, {.year = year});
}

// The first lines of its table.
printing::Listing cutTo(printing::Listing list, std::size_t lines) {
    std::size_t left = lines;
    for (auto& group : std::get<printing::ListingTable>(list.blocks.back()).groups) {
        group.rows.resize(std::min(left, group.rows.size()));
        left -= group.rows.size();
    }
    if (left > 0)
        throw std::runtime_error("too few lines");
    return list;
}

void tell(const char* what, double figure, double limit, const char* unit) {
    std::printf("%-60s %8.2f %s (at most %g)\n", what, figure, unit, limit);
}

double peakMegabytes() {
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.simplified().split(' ').value(1).toDouble() / 1024;
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const QApplication app(argc, argv);
    if (argc != 2) {
        std::fputs("report_bench REGISTER\n", stderr);
        return 2;
    }
    try {
        store::Database::setRegisterPath(QString::fromLocal8Bit(argv[1]));
        QElapsedTimer timer;
        timer.start();
        auto shown = std::make_shared<printing::PrintedListing>(anniversaries());
        QWidget opener;
        opener.show();
        printing::showPreview(shown, &opener);
        for (QWidget* window : opener.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            window->grab();
        tell("the year's anniversaries on the screen", double(timer.elapsed()) / 1000, 1, "s");

        const printing::PrintedListing printed(cutTo(anniversaries(), linesPrinted));
        const QTemporaryDir folder;
        timer.restart();
        printing::writePdf(printed, folder.path(), u"list"_s);
        tell("12,000 lines as a PDF", double(timer.elapsed()) / 1000, 3, "s");
        tell("memory of all this", peakMegabytes(), 300, "MB");
        bench::compare(
            "the year's anniversaries: document value", 3.0, 9, 1, [] { anniversaries(); },
            [&] { selectByHand(argv[1]); });
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
