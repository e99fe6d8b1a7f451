// What the program costs beside the same done by hand, measured side by side on a full register.
//
//     store_bench REGISTER
#include "compare.h"

#include "store/table.h"

#include <QCoreApplication>

#include <sqlite3.h>

#include <random>
#include <stdexcept>

namespace {

void require(bool good, const char* what) {
    if (!good)
        throw std::runtime_error(what);
}

void seekByHand(const char* path, int number) {
    sqlite3* engine = nullptr;
    sqlite3_stmt* statement = nullptr;
    require(sqlite3_open_v2(path, &engine, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK, "open");
    require(sqlite3_prepare_v2(engine, "SELECT * FROM tbl_danka WHERE tbldnk_no1 = ? AND tbldnk_no2 = ?", -1,
                               &statement, nullptr) == SQLITE_OK,
            "prepare");
    sqlite3_bind_int(statement, 1, number);
    sqlite3_bind_int(statement, 2, 0);
    require(sqlite3_step(statement) == SQLITE_ROW, "no such household");
    for (int column = 0; column < sqlite3_column_count(statement); ++column)
        require(sqlite3_column_type(statement, column) == SQLITE_NULL || sqlite3_column_text(statement, column),
                "column");
    sqlite3_finalize(statement);
    sqlite3_close(engine);
}

void seek(const QString& path, int number) {
    store::Database database(path);
    store::Table households(database, store::idxdnk_no);
    require(households.seek(store::Seek::equal, number, 0), "no such household");
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fputs("store_bench REGISTER\n", stderr);
        return 2;
    }
    try {
        const QString path = QString::fromLocal8Bit(argv[1]);
        int households = 0;
        {
            store::Database database(path);
            SQLite::Statement last(database.engine(), "SELECT max(tbldnk_no1) FROM tbl_danka");
            last.executeStep();
            households = last.getColumn(0).getInt();
        }
        std::mt19937 chance(1);
        const auto anyHousehold = [&] { return 1 + static_cast<int>(chance() % static_cast<unsigned>(households)); };
        bench::compare(
            "open, one keyed seek, release", 1.5, 25, 40, [&] { seek(path, anyHousehold()); },
            [&] { seekByHand(argv[1], anyHousehold()); });
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
