#include "memorials/household_list_rules.h"
#include "memorials/memorial_screens.h"
#include "ui/list_view.h"

using namespace Qt::StringLiterals;

namespace memorials {

std::unique_ptr<ui::Screen> 法要檀(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<法要檀Form>>(workplace, u"法要檀"_s, u"檀家・法要一覧"_s,
                                                               u"檀家法要一覧"_s, ui::Keeps{.household = true});
    法要檀Form& form = screen->form();
    ui::Layout layout(*screen);
    layout.frame()
        .row(u"檀家名"_s)
        .shown(HOSHIREN_CONTROL(form, frm21_dankag), 12)
        .row(u"当主氏名"_s)
        .shown(HOSHIREN_CONTROL(form, frm21_toshug), 12)
        .shown(HOSHIREN_CONTROL(form, frm21_toshuk), 14)
        .named(u"当主氏名カナ"_s);
    layout.beside()
        .frame()
        .row(u"住所1"_s)
        .shown(HOSHIREN_CONTROL(form, frm21_jyusho1), 22)
        .note(u"地区"_s)
        .shown(HOSHIREN_CONTROL(form, frm21_chiku), 8);
    layout.row(u"備考"_s).shown(HOSHIREN_CONTROL(form, frm21_bikou), 22);
    const ui::Operation open = screen->run(openHouseholdMemorial);
    ui::addList(layout, *screen, form, open);
    layout.mainAction(u"個別照会"_s, u"法要詳細"_s, open);
    ui::addListButtons(layout, *screen, form);
    layout.gap().action(u"故人照会"_s, u"故人照会"_s, screen->run(openHouseholdDeceased)).closing().finish();
    screen->onOpen(screen->run(beginHouseholdMemorials));
    auto* raw = screen.get();
    screen->shows({.publish = [raw](desk::ScreenContext& context) { publishShown(raw->form(), context); },
                   .asked = askedMemorials,
                   .load = screen->run(beginHouseholdMemorials)});
    return screen;
}

} // namespace memorials
