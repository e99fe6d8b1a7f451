#include "masters/master_screen.h"

#include "masters/master_rules.h"
#include "ui/layout.h"

using namespace Qt::StringLiterals;

namespace masters {

std::unique_ptr<ui::Screen> マスター登(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<マスター登Form>>(workplace, u"マスター登"_s, u"マスター登録"_s,
                                                                   u"ｺｰﾄﾞﾏｽﾀｰ情報"_s);
    auto& form = screen->form();
    const ui::Operation choose = screen->run(chooseCategory);
    ui::Layout layout(*screen);
    layout.frame()
        .row()
        .options(u"Frame1"_s, u"マスター種類"_s,
                 {{HOSHIREN_CONTROL(form, 続柄), u"続柄"_s},
                  {HOSHIREN_CONTROL(form, 地区), u"地区"_s},
                  {HOSHIREN_CONTROL(form, 場所), u"場所"_s}},
                 choose)
        .namesRecord(3);
    layout.frame()
        .row(u"マスター一覧"_s, u"Label1"_s)
        .grid(HOSHIREN_CONTROL(form, マスタ一), {.clicked = screen->run(pickEntry)}, 12);
    layout.frame()
        .row(u"登録NO"_s)
        .number(HOSHIREN_CONTROL(form, 登録NO), 4)
        .namesRecord()
        .row(u"登録名称"_s)
        .text(HOSHIREN_CONTROL(form, 登録名称), 20)
        .row(u"登録略称"_s)
        .text(HOSHIREN_CONTROL(form, 登録略称), 12);
    layout.mainAction(u"更新"_s, u"確定"_s, screen->run(saveEntry))
        .gap()
        .action(u"削除"_s, u"削除"_s, screen->run(removeEntry))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginMasters));
    screen->showsHeld({.lookUp = screen->run(lookUpNamedEntry)});
    return screen;
}

} // namespace masters
