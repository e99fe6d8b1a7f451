#include "app/application.h"
#include "app/daily_copy.h"
#include "app/screens.h"
#include "search/register_finder.h"
#include "store/database.h"
#include "ui/message_box.h"

#include <QApplication>

using namespace Qt::StringLiterals;

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    app::prepare(application);
    try {
        store::bringBackToOneFile(store::Database::registerPath());
    } catch (const std::exception& failure) {
        ui::showMessage(nullptr, store::explain(failure), u"メニュー"_s, desk::Icon::exclamation);
    }
    ui::Workplace workplace(app::screens());
    workplace.finder = std::make_unique<search::RegisterFinder>([&workplace] { return workplace.operating(); });
    workplace.open(u"メニュー"_s);
    const app::DailyCopy copy(workplace);
    return QApplication::exec();
}
