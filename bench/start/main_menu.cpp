// The program's start up to the painted main menu, then its end. --without-copy: without the day's copy of the
// register.
#include "app/application.h"
#include "app/daily_copy.h"
#include "app/open_program.h"
#include "app/screens.h"
#include "quit_when_painted.h"
#include "search/register_finder.h"
#include "store/database.h"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    app::prepare(application);
    app::OpenProgram program(store::Database::registerPath());
    store::bringBackToOneFile(store::Database::registerPath());
    ui::Workplace workplace(app::screens());
    workplace.finder = std::make_unique<search::RegisterFinder>([&workplace] { return workplace.operating(); });
    workplace.open(QStringLiteral("メニュー"));
    program.onAsked([&workplace] { workplace.bringForward(); });
    new QuitWhenPainted(*workplace.find(QStringLiteral("メニュー")));
    std::optional<app::DailyCopy> copy;
    if (!QApplication::arguments().contains(QStringLiteral("--without-copy")))
        copy.emplace(workplace);
    return QApplication::exec();
}
