#include "households/succession_screen.h"

#include "households/succession_rules.h"
#include "ui/layout.h"

using namespace Qt::StringLiterals;

namespace households {

std::unique_ptr<ui::Screen> 代替当(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<代替当Form>>(workplace, u"代替当"_s, u"代替・当主"_s, u"代替り処理"_s,
                                                               ui::Keeps{.household = true});
    auto& form = screen->form();
    const ui::Operation pick = screen->run(PickNewHead);
    ui::Layout layout(*screen);
    layout.frame()
        .row(u"登録番号"_s)
        .shown(HOSHIREN_CONTROL(form, frm01_no), 4)
        .shown(HOSHIREN_CONTROL(form, frm01_eno), 3)
        .named(u"登録番号　枝番"_s)
        .row(u"檀家名"_s)
        .text(HOSHIREN_CONTROL(form, frm01_dankag), 14)
        .row(u"カナ"_s)
        .text(HOSHIREN_CONTROL(form, frm01_dankak), 14)
        .row(u"檀家区分"_s)
        .options(
            u"Frame2"_s, {},
            {{HOSHIREN_CONTROL(form, frm01_dnkkbn1), u"檀家"_s}, {HOSHIREN_CONTROL(form, frm01_dnkkbn2), u"一般"_s}})
        .row(u"新当主氏名"_s)
        .list(HOSHIREN_CONTROL(form, frm01_toshug), 14, 6, pick)
        .list(HOSHIREN_CONTROL(form, frm01_tsh_zkgr), 6, 6, pick)
        .named(u"続柄一覧"_s)
        .parallel(2)
        .row(u"カナシメイ"_s)
        .text(HOSHIREN_CONTROL(form, frm01_toshuk), 18);
    layout.beside()
        .frame()
        .row(u"郵便番号"_s)
        .text(HOSHIREN_CONTROL(form, frm01_yubinno), 6)
        .row(u"住所１"_s)
        .text(HOSHIREN_CONTROL(form, frm01_jyusho1), 24)
        .row(u"住所２"_s)
        .text(HOSHIREN_CONTROL(form, frm01_jyusho2), 24)
        .row(u"電話番号"_s)
        .text(HOSHIREN_CONTROL(form, frm01_tel), 10)
        .row(u"FAX"_s)
        .text(HOSHIREN_CONTROL(form, frm01_fax), 10)
        .row(u"地区"_s)
        .combo(HOSHIREN_CONTROL(form, frm01_地区), 10)
        .row(u"備考"_s)
        .text(HOSHIREN_CONTROL(form, frm01_biko), 24);
    layout.mainAction(u"更新"_s, u"更新"_s, screen->run(CarryOutSuccession))
        .gap()
        .action(u"家族一覧"_s, u"家族一覧"_s, screen->run(openFamilyOfSuccession))
        .closing()
        .finish();
    screen->onOpen(screen->run(LoadSuccession));
    auto* raw = screen.get();
    screen->showsHeld({.publish = [raw](desk::ScreenContext& context) { publishShown(raw->form(), context); },
                       .asked = desk::askedHousehold,
                       .load = screen->run(LoadSuccession)});
    return screen;
}

} // namespace households
