// The household list by kana row on a full register, beside a plain loop that reads the same eleven selections; and
// what a change of tab costs with many and with few households.
//
//     kana_list_bench REGISTER
#include "compare.h"

#include "app/application.h"
#include "app/screens.h"
#include "households/kana_list_rules.h"
#include "store/database.h"

#include <QApplication>
#include <QTabWidget>
#include <QTableView>

#include <sqlite3.h>

#include <cstdio>
#include <stdexcept>

namespace {

// Reads every column of the eleven selections and keeps nothing.
void readByHand(const char* path) {
    sqlite3* engine = nullptr;
    if (sqlite3_open_v2(path, &engine, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK)
        throw std::runtime_error("open");
    long long bytes = 0;
    for (const households::KanaTab& tab : households::kanaTabs()) {
        sqlite3_stmt* statement = nullptr;
        const std::string sql = std::string("SELECT * FROM ") + tab.query;
        if (sqlite3_prepare_v2(engine, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
            throw std::runtime_error("prepare");
        while (sqlite3_step(statement) == SQLITE_ROW) {
            for (int column = 0; column < 8; ++column) {
                if (sqlite3_column_text(statement, column))
                    bytes += sqlite3_column_bytes(statement, column);
            }
        }
        sqlite3_finalize(statement);
    }
    sqlite3_close(engine);
    if (bytes == 0)
        throw std::runtime_error("nothing read");
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    app::prepare(application);
    if (argc != 2) {
        std::fputs("kana_list_bench REGISTER\n", stderr);
        return 2;
    }
    try {
        store::Database::setRegisterPath(QString::fromLocal8Bit(argv[1]));
        bench::compare(
            "household list: eleven tabs read and ordered", 2.0, 7, 1,
            [] {
                std::size_t lines = 0;
                for (const auto& tab : households::readKanaTabs())
                    lines += tab.size();
                if (lines == 0)
                    throw std::runtime_error("nothing read");
            },
            [&] { readByHand(argv[1]); });

        ui::Workplace workplace(app::screens());
        bench::compare(
            "household list: the screen opened, shown and closed", 2.0, 7, 1,
            [&] {
                workplace.open(QStringLiteral("檀家一覧"));
                QCoreApplication::processEvents();
                workplace.find(QStringLiteral("檀家一覧"))->close();
                QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            },
            [&] { readByHand(argv[1]); });

        workplace.open(QStringLiteral("檀家一覧"));
        auto* tabs = workplace.find(QStringLiteral("檀家一覧"))->findChild<QTabWidget*>();
        int most = 0;
        int fewest = -1;
        for (int i = 0; i < tabs->count(); ++i) {
            const auto rows = [&](int at) { return static_cast<QTableView*>(tabs->widget(at))->model()->rowCount(); };
            if (rows(i) > rows(most))
                most = i;
            if (rows(i) >= 40 && (fewest < 0 || rows(i) < rows(fewest)))
                fewest = i;
        }
        const auto show = [&](int tab) {
            tabs->setCurrentIndex(tab);
            QCoreApplication::processEvents();
        };
        const int elsewhere = most == 0 ? 1 : 0;
        bench::compare(
            "household list: change to the longest tab / to the shortest", 1.5, 25, 4,
            [&] {
                show(elsewhere);
                show(most);
            },
            [&] {
                show(elsewhere);
                show(fewest);
            });
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
