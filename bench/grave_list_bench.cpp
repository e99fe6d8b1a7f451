// A page of the grave list and of the fee notices beside the bare keyed selection of the same rows, what place of the
// page and size of the file cost, and what the fees come to. Makes its registers itself.
//
//     grave_list_bench [REGISTER]
#include "compare.h"
#include "silent_desk.h"

#include "graves/fee_notice_rules.h"
#include "graves/grave_list_rules.h"
#include "store/database.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <cstdio>
#include <stdexcept>

namespace {

constexpr int sectionSize = 3000;
constexpr int wholeFile = 32767;
constexpr int feesDue = 12000;

QString lot(int number) {
    return QStringLiteral("%1").arg(number, 4, 10, QChar(u'0'));
}

// Sections 0, 1, ... of 3,000 graves, written lot by lot across the sections as a cemetery grows.
void makeRegister(const QString& path, int graves) {
    store::createRegister(path);
    store::Database database(path);
    SQLite::Statement insert(
        database.engine(),
        "INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_dnk_kbn, "
        "tblhak_dnk_nameg, tblhak_dnk_namek, tblhak_bohyo_kbn, tblhak_bohyo_mei, tblhak_shiyo_stymd, "
        "tblhak_shiyo_ryokin, tblhak_kanri_ryokin, tblhak_kanri_nxymd, tblhak_biko) VALUES "
        "(?, ?, ?, ?, '檀家', '山田', 'ヤマダ', '家', '山田家之墓', '1998-04-01', 1200000, 12000, '2027-04-01', "
        "'角地')");
    const int sections = (graves + sectionSize - 1) / sectionSize;
    store::Write write(database);
    for (int i = 0; i < graves; ++i) {
        insert.bind(1, i + 1);
        insert.bind(2, "区" + std::to_string(i % sections));
        insert.bind(3, lot(i / sections + 1).toStdString());
        insert.bind(4, i % 3 ? i + 1 : 0);
        insert.exec();
        insert.reset();
    }
    write.commit();
}

// Reads the rows of a statement with two values, a page and one more at most.
void selectByHand(const std::string& path, const char* text, const char* first, const char* second, int wanted) {
    sqlite3* engine = nullptr;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_open_v2(path.c_str(), &engine, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK ||
        sqlite3_prepare_v2(engine, text, -1, &statement, nullptr) != SQLITE_OK)
        throw std::runtime_error("open");
    sqlite3_bind_text(statement, 1, first, -1, SQLITE_STATIC);
    sqlite3_bind_text(statement, 2, second, -1, SQLITE_STATIC);
    int rows = 0;
    long long bytes = 0;
    while (rows < wanted && sqlite3_step(statement) == SQLITE_ROW) {
        ++rows;
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            if (sqlite3_column_text(statement, column))
                bytes += sqlite3_column_bytes(statement, column);
        }
    }
    sqlite3_finalize(statement);
    sqlite3_close(engine);
    if (rows < wanted || bytes == 0)
        throw std::runtime_error("too few rows");
}

void selectSection(const std::string& path, const std::string& from) {
    selectByHand(path,
                 "SELECT * FROM tbl_ohaka WHERE tblhak_banchi1 = ? AND tblhak_banchi2 >= ? ORDER BY tblhak_banchi2",
                 "区0", from.c_str(), desk::pageRows + 1);
}

// One page of section 区0 from a lot on, without its dates in era form.
void fillPage(const QString& from, desk::Desk& desk) {
    static const desk::ListDescription<graves::ListedGrave, graves::PlaceKey> description{
        .title = {}, .nothing = QStringLiteral("empty"), .columns = graves::graveColumns(), .key = graves::placeOf};
    desk::Grid grid;
    graves::GraveList list(description, {QStringLiteral("区0"), from});
    list.fill(graves::listedGraves, grid, desk);
    if (list.rowCounter() != desk::pageRows + 1)
        throw std::runtime_error("too few rows");
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    try {
        QTemporaryDir folder;
        bench::SilentDesk desk;
        const QString file = folder.filePath(QStringLiteral("Hoshiren.mdb"));
        const QString small = folder.filePath(QStringLiteral("small.mdb"));
        makeRegister(file, wholeFile);
        makeRegister(small, sectionSize);
        store::Database::setRegisterPath(file);

        const QString first = lot(1);
        const QString last = lot(2900);
        for (const QString& from : {first, last})
            bench::compare(
                from == first ? "grave list: first page of 3,000 in 32,767" : "grave list: page from lot 2,900", 2.0,
                25, 40, [&] { fillPage(from, desk); }, [&] { selectSection(file.toStdString(), from.toStdString()); });
        bench::compare(
            "grave list: a late page / the first one", 1.15, 25, 40, [&] { fillPage(last, desk); },
            [&] { fillPage(first, desk); });
        bench::compare(
            "grave list: in a file of 32,767 / of 3,000", 1.15, 25, 40, [&] { fillPage(first, desk); },
            [&] {
                store::Database::setRegisterPath(small);
                fillPage(first, desk);
                store::Database::setRegisterPath(file);
            });

        std::vector<graves::ListedGrave> page(desk::pageRows);
        for (auto& grave : page) {
            grave.tblhak_shiyo_stymd = QDate(1998, 4, 1);
            grave.tblhak_kanri_nxymd = QDate(2027, 4, 1);
        }
        bench::compare(
            "grave list: the 60 era dates of a page / the page itself", 5.0, 25, 40,
            [&] { graves::fillEraTexts(page, desk); }, [&] { fillPage(first, desk); });

        const QString due = folder.filePath(QStringLiteral("due.mdb"));
        makeRegister(due, feesDue);
        store::Database::setRegisterPath(due);
        desk::ScreenContext context;
        graves::お墓通Form fees;
        graves::beginFeeNotices(fees, context, desk);
        bench::compare(
            "fee notices: first page of 12,000 with its era dates", 3.0, 25, 40,
            [&] { graves::showFees(fees, context, desk); },
            [&] {
                selectByHand(due.toStdString(),
                             "SELECT * FROM tbl_ohaka WHERE tblhak_kanri_nxymd BETWEEN ? AND ? "
                             "ORDER BY tblhak_kanri_nxymd",
                             "2026-11-22", "2027-11-22", desk::pageRows + 1);
            });
        bench::compare(
            "fee notices: count and sum of 12,000", 1.5, 25, 10, [&] { fees.count(); },
            [&] {
                selectByHand(due.toStdString(),
                             "SELECT count(*), sum(tblhak_kanri_ryokin) FROM tbl_ohaka "
                             "WHERE tblhak_kanri_nxymd BETWEEN ? AND ?",
                             "2026-11-22", "2027-11-22", 1);
            });
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
