#include "memorials/deceased_list_rules.h"
#include "memorials/memorial_screens.h"
#include "ui/list_view.h"

using namespace Qt::StringLiterals;

namespace memorials {

std::unique_ptr<ui::Screen> 法要個(ui::Workplace& workplace) {
    auto screen =
        std::make_unique<ui::FormScreen<法要個Form>>(workplace, u"法要個"_s, u"法要記録"_s, u"法要 記録"_s,
                                                     ui::Keeps{.household = true, .deceased = true, .memorial = true});
    法要個Form& form = screen->form();
    ui::Layout layout(*screen);
    layout.frame()
        .row(u"檀家名"_s)
        .shown(HOSHIREN_CONTROL(form, frm21_dankag), 12)
        .row(u"俗名"_s)
        .shown(HOSHIREN_CONTROL(form, frm21_zoknameg), 12)
        .shown(HOSHIREN_CONTROL(form, frm21_zoknamek), 14)
        .named(u"俗名カナ"_s)
        .row(u"命日"_s)
        .shown(HOSHIREN_CONTROL(form, frm21_meigymd), 11)
        .note(u"享年"_s)
        .shown(HOSHIREN_CONTROL(form, frm21_kyounen), 3);
    layout.beside()
        .frame()
        .row(u"戒名"_s)
        .shown(HOSHIREN_CONTROL(form, frm21_kaimyog), 18)
        .row()
        .shown(HOSHIREN_CONTROL(form, frm21_kaimyok), 18)
        .named(u"戒名カナ"_s)
        .row(u"備考"_s)
        .shown(HOSHIREN_CONTROL(form, frm21_bikou), 22);
    const ui::Operation open = screen->run(openDeceasedMemorial);
    ui::addList(layout, *screen, form, open);
    layout.mainAction(u"個別照会"_s, u"個別照会"_s, open).closing().finish();
    screen->onOpen(screen->run(beginDeceasedMemorials));
    screen->shows({.asked = askedDeceased, .load = screen->run(beginDeceasedMemorials)});
    return screen;
}

} // namespace memorials
