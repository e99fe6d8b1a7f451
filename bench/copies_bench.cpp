// A full register compared with its copy, and a household of 30 rows or more brought back, beside the same in plain
// statements. The first is to take 2 s at most, the second 0.2 s. Works on copies.
//
//     copies_bench REGISTER
#include "compare.h"
#include "silent_desk.h"

#include "desk/bring_back.h"
#include "store/comparison.h"
#include "store/copy_source.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

const std::pair<const char*, const char*> tables[] = {{"tbl_danka", "tbldnk_no1"},
                                                      {"tbl_kazoku", "tblkzk_no1"},
                                                      {"tbl_kakocho", "tblkak_no"},
                                                      {"tbl_hohyo", "tblhoy_no"},
                                                      {"tbl_ohaka", "tblhak_dnk_no"}};

void require(bool good, const char* what) {
    if (!good)
        throw std::runtime_error(what);
}

std::string attach(const QString& path) {
    return "ATTACH '" + QFile::encodeName(path).toStdString() + "' AS other";
}

void compareByHand(const QString& copy) {
    store::Database database;
    database.engine().exec(attach(copy));
    int differing = 0;
    for (const auto& [table, number] : tables) {
        const std::string name = table;
        for (const std::string& difference : {"SELECT * FROM main." + name + " EXCEPT SELECT * FROM other." + name,
                                              "SELECT * FROM other." + name + " EXCEPT SELECT * FROM main." + name})
            differing += database.engine().execAndGet("SELECT count(*) FROM (" + difference + ")").getInt();
    }
    require(differing > 0, "nothing differs");
}

void compareByProgram(const QString& copy) {
    store::CopySource source(copy);
    const auto differences = store::compareWithNow(source, store::Database::registerPath());
    require(!differences->empty(), "nothing differs");
}

// The household with the fewest rows that has thirty.
int largeHousehold() {
    store::Database database;
    return database.engine()
        .execAndGet("SELECT n FROM (SELECT tbldnk_no1 AS n, "
                    "(SELECT count(*) FROM tbl_kazoku WHERE tblkzk_no1 = tbldnk_no1) + "
                    "(SELECT count(*) FROM tbl_kakocho WHERE tblkak_no = tbldnk_no1) + "
                    "(SELECT count(*) FROM tbl_hohyo WHERE tblhoy_no = tbldnk_no1) + "
                    "(SELECT count(*) FROM tbl_ohaka WHERE tblhak_dnk_no = tbldnk_no1) + 1 AS c FROM tbl_danka "
                    "WHERE tbldnk_no1 < 2000) WHERE c >= 30 ORDER BY c LIMIT 1")
        .getInt();
}

void erase(int household) {
    store::Database database;
    store::Write write(database);
    for (const auto& [table, number] : tables)
        database.engine().exec(std::string("DELETE FROM ") + table + " WHERE " + number + " = " +
                               std::to_string(household));
    write.commit();
}

void bringBackByHand(const QString& copy, int household) {
    store::Database database;
    database.engine().exec(attach(copy));
    store::Write write(database);
    for (const auto& [table, number] : tables)
        database.engine().exec(std::string("INSERT INTO main.") + table + " SELECT * FROM other." + table + " WHERE " +
                               number + " = " + std::to_string(household));
    write.commit();
}

void bringBackByProgram(const QString& copy, int household) {
    bench::SilentDesk desk;
    store::CopySource source(copy);
    const store::Records records = source.household(static_cast<std::int16_t>(household));
    store::Database database;
    require(desk::bringBack(database, records, desk, {}).left.isEmpty(), "something was left");
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fputs("copies_bench REGISTER\n", stderr);
        return 2;
    }
    try {
        const QTemporaryDir folder;
        const QString copy = folder.filePath(u"copy.mdb"_s);
        const QString present = folder.filePath(u"Hoshiren.mdb"_s);
        require(QFile::copy(QString::fromLocal8Bit(argv[1]), copy) && QFile::copy(copy, present), "no copy");
        store::Database::setRegisterPath(present);
        const int household = largeHousehold();
        require(household > 0, "no household of thirty rows");
        erase(household);
        bench::compare(
            "comparison with a copy (2 s at most)", 1.0, 5, 1, [&] { compareByProgram(copy); },
            [&] { compareByHand(copy); });
        bench::compare(
            "a household of 30 rows brought back (0.2 s at most)", 3.0, 15, 1,
            [&] { bringBackByProgram(copy, household); }, [&] { bringBackByHand(copy, household); },
            [&] { erase(household); });
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
