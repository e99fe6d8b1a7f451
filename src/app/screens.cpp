#include "app/screens.h"

#include "app/menu_screen.h"
#include "app/settings_screen.h"
#include "calendar/era_registration_screen.h"
#include "copies/copies_screen.h"
#include "family/family_screens.h"
#include "family/household_lists_screen.h"
#include "graves/grave_screens.h"
#include "households/household_screens.h"
#include "households/succession_screen.h"
#include "labels/settings_screen.h"
#include "masters/master_screen.h"
#include "memorials/memorial_screens.h"
#include "reports/reports_screen.h"
#include "transfer/transfer_screen.h"

using namespace Qt::StringLiterals;

namespace app {

QHash<QString, ui::ScreenMaker> screens() {
    // clang-format off: a line a screen
    return {
        {u"メニュー"_s, メニュー},

        {u"年号登"_s, calendar::年号登},
        {u"お墓登"_s, graves::お墓登},
        {u"お墓新"_s, graves::お墓新},
        {u"お墓一"_s, graves::お墓一},
        {u"お墓通"_s, graves::お墓通},
        {u"紐区画"_s, graves::紐区画},
        {u"紐墓標"_s, graves::紐墓標},

        {u"マスター登"_s, masters::マスター登},
        {u"控え"_s, copies::控え},

        {u"宛名設定"_s, labels::宛名設定},

        {u"檀家登"_s, households::檀家登},
        {u"檀家一覧"_s, households::檀家一覧},
        {u"代替当"_s, households::代替当},
        {u"檀家出力"_s, transfer::檀家出力},
        {u"檀家一括"_s, transfer::檀家一括},
        {u"お墓出力"_s, transfer::お墓出力},
        {u"お墓一括"_s, transfer::お墓一括},

        {u"家族登"_s, family::家族登},
        {u"家族一"_s, family::家族一},
        {u"過去登"_s, family::過去登},
        {u"過去一"_s, family::過去一},
        {u"法要明"_s, memorials::法要明},
        {u"法要外"_s, memorials::法要外},
        {u"法要一"_s, memorials::法要一},
        {u"法要個"_s, memorials::法要個},
        {u"法要檀"_s, memorials::法要檀},
        {u"法要通"_s, memorials::法要通},

        {u"帳票"_s, reports::帳票},

        {u"設定"_s, 設定},
    };
    // clang-format on
}

} // namespace app
