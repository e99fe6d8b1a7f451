// The first page of a year's memorial notices beside the bare keyed selection of the same rows with their households.
//
//     notice_list_bench REGISTER
#include "compare.h"
#include "silent_desk.h"

#include "memorials/notice_rules.h"
#include "store/database.h"

#include <QCoreApplication>

#include <sqlite3.h>

#include <cstdio>
#include <stdexcept>

namespace {

long long readAll(sqlite3_stmt* statement) {
    long long bytes = 0;
    for (int column = 0; column < sqlite3_column_count(statement); ++column) {
        if (sqlite3_column_text(statement, column))
            bytes += sqlite3_column_bytes(statement, column);
    }
    return bytes;
}

sqlite3_stmt* prepare(sqlite3* engine, const char* text) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(engine, text, -1, &statement, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(engine));
    return statement;
}

// The rows that a page reads: to the 31st that is open for notice, with the household of each of the 30 listed.
void selectByHand(const std::string& path, const std::string& from, const std::string& to) {
    sqlite3* engine = nullptr;
    if (sqlite3_open_v2(path.c_str(), &engine, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK)
        throw std::runtime_error("open");
    sqlite3_stmt* memorials =
        prepare(engine, "SELECT tblhoy_kaiki_s + tblhoy_kaiki_rs + tblhoy_tsuchi_s, tblhoy_no, * FROM tbl_hohyo "
                        "WHERE tblhoy_kaiki_yymd >= ? AND tblhoy_kaiki_yymd <= ? ORDER BY tblhoy_kaiki_yymd");
    sqlite3_stmt* household = prepare(engine, "SELECT * FROM tbl_danka WHERE tbldnk_no1 = ? AND tbldnk_no2 = 0");
    sqlite3_bind_text(memorials, 1, from.c_str(), -1, SQLITE_STATIC);
    sqlite3_bind_text(memorials, 2, to.c_str(), -1, SQLITE_STATIC);
    int rows = 0;
    long long bytes = 0;
    while (rows <= desk::pageRows && sqlite3_step(memorials) == SQLITE_ROW) {
        bytes += readAll(memorials);
        if (sqlite3_column_int(memorials, 0) != 0 || ++rows > desk::pageRows)
            continue;
        sqlite3_bind_int(household, 1, sqlite3_column_int(memorials, 1));
        if (sqlite3_step(household) == SQLITE_ROW)
            bytes += readAll(household);
        sqlite3_reset(household);
    }
    sqlite3_finalize(household);
    sqlite3_finalize(memorials);
    sqlite3_close(engine);
    if (rows <= desk::pageRows || bytes == 0)
        throw std::runtime_error("too few rows");
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fputs("notice_list_bench REGISTER\n", stderr);
        return 2;
    }
    try {
        store::Database::setRegisterPath(QString::fromLocal8Bit(argv[1]));
        bench::SilentDesk desk;
        desk::ScreenContext context;
        memorials::法要通Form form;
        memorials::beginNotices(form, context, desk);
        const std::string from = form.from.toString(Qt::ISODate).toStdString();
        const std::string to = form.to.toString(Qt::ISODate).toStdString();
        const auto show = [&] {
            memorials::showNotices(form, context, desk);
            if (form.list.rowCounter() != desk::pageRows + 1)
                throw std::runtime_error("too few rows");
        };
        bench::compare("memorial notices: first page of a year", 2.0, 25, 20, show,
                       [&] { selectByHand(argv[1], from, to); });
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
