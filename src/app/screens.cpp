#include "app/screens.h"

#include "app/menu_screen.h"
#include "masters/master_screen.h"

using namespace Qt::StringLiterals;

namespace app {

QHash<QString, ui::ScreenMaker> screens() {
    return {
        {u"メニュー"_s, メニュー},

        {u"マスター登"_s, masters::マスター登},
    };
}

} // namespace app
