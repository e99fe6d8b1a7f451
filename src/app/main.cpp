// hoshiren [--once]: with --once a program that is open on the register already comes forward instead.
#include "app/application.h"
#include "app/daily_copy.h"
#include "app/open_program.h"
#include "app/screens.h"
#include "search/register_finder.h"
#include "store/database.h"
#include "ui/message_box.h"

#include <QApplication>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::milliseconds patience{1500};

// Whether there is nothing left to start.
bool isOpenAlready(app::OpenProgram& program) {
    switch (program.bringForward(patience)) {
    case app::OpenProgram::Found::none:
        return false;
    case app::OpenProgram::Found::forward:
        return true;
    case app::OpenProgram::Found::silent:
        break;
    }
    return !ui::askQuestion(nullptr,
                            u"Hoshiren はもう起動していますが、返事がありません。\n"
                            "少し待ってから、もう一度お試し下さい。\n\n"
                            "もう一つ起動して仕事を続けることもできます。登録簿が壊れることはありません。\n"
                            "もう一つ起動しますか？"_s,
                            u"Hoshiren"_s, desk::Preset::no);
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    app::prepare(application);
    app::OpenProgram program(store::Database::registerPath());
    if (QApplication::arguments().contains(u"--once"_s) && isOpenAlready(program))
        return 0;
    try {
        store::bringBackToOneFile(store::Database::registerPath());
    } catch (const std::exception& failure) {
        ui::showMessage(nullptr, store::explain(failure), u"メニュー"_s, desk::Icon::exclamation);
    }
    ui::Workplace workplace(app::screens());
    workplace.finder = std::make_unique<search::RegisterFinder>([&workplace] { return workplace.operating(); });
    workplace.open(u"メニュー"_s);
    program.onAsked([&workplace] { workplace.bringForward(); });
    const app::DailyCopy copy(workplace);
    return QApplication::exec();
}
