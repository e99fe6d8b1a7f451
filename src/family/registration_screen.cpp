#include "family/family_screens.h"
#include "family/registration_rules.h"
#include "ui/layout.h"

using namespace Qt::StringLiterals;

namespace family {

std::unique_ptr<ui::Screen> 家族登(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<家族登Form>>(workplace, u"家族登"_s, u"家族情報"_s, u"家族登録"_s,
                                                               ui::Keeps{.household = true});
    auto& form = screen->form();
    ui::Layout layout(*screen);
    layout.frame(u"檀家"_s, u"檀家さん"_s)
        .row(u"登録番号"_s)
        .shown(HOSHIREN_CONTROL(form, frm12_no), 4)
        .row(u"檀家名"_s)
        .shown(HOSHIREN_CONTROL(form, frm12_dankag), 12)
        .row(u"カナ"_s)
        .shown(HOSHIREN_CONTROL(form, frm12_dankak), 16)
        .row(u"当主氏名"_s)
        .shown(HOSHIREN_CONTROL(form, frm12_toshunameg), 16)
        .row(u"家族一覧"_s)
        .list(HOSHIREN_CONTROL(form, frm12_meibo), 12, 11, screen->run(loadMember))
        .list(HOSHIREN_CONTROL(form, frm12_mzkgr), 6, 11, screen->run(loadMember))
        .named(u"当主との続柄一覧"_s)
        .parallel(2);
    layout.beside()
        .frame(u"家族"_s, u"家族"_s)
        .row(u"家族氏名"_s)
        .text(HOSHIREN_CONTROL(form, frm12_nameg), 16)
        .row(u"ｶﾅｼﾒｲ"_s)
        .text(HOSHIREN_CONTROL(form, frm12_namek), 20)
        .kanaOf(u"frm12_nameg"_s)
        .row(u"生年月日"_s)
        .dates({u"生年元号"_s, u"生年"_s, u"生年月"_s, u"生年日"_s, u"生年日YMD"_s}, form.生年)
        .row(u"当主との続柄"_s)
        .combo(HOSHIREN_CONTROL(form, frm12_続柄), 8)
        .row(u"同居区分"_s)
        .options(u"同居区分"_s, {},
                 {{HOSHIREN_CONTROL(form, frm12_dohkyo), u"同居"_s}, {HOSHIREN_CONTROL(form, frm12_bekkyo), u"別居"_s}})
        .row(u"郵便番号"_s)
        .text(HOSHIREN_CONTROL(form, frm12_yubinno), 6)
        .row(u"住所１"_s)
        .text(HOSHIREN_CONTROL(form, frm12_jyusho1), 26)
        .row()
        .text(HOSHIREN_CONTROL(form, frm12_jyusho2), 26)
        .named(u"住所２行目"_s)
        .row(u"電話番号"_s)
        .text(HOSHIREN_CONTROL(form, frm12_tel), 9)
        .note(u"FAX"_s)
        .text(HOSHIREN_CONTROL(form, frm12_fax), 9)
        .row(u"地区"_s)
        .combo(HOSHIREN_CONTROL(form, frm12_地区), 12)
        .row(u"備考"_s)
        .text(HOSHIREN_CONTROL(form, frm12_bikou), 26);
    layout.mainAction(u"登録"_s, u"登録"_s, screen->run(registerMember))
        .updating(u"更新"_s, u"更新"_s, screen->run(updateMember))
        .gap()
        .action(u"削除"_s, u"削除"_s, screen->run(removeMember))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginFamily));
    auto* raw = screen.get();
    screen->showsHeld({.name = [raw](desk::ScreenContext& context) { nameShown(raw->form(), context); },
                       .asked = [raw](const desk::ScreenContext& context) { return askedMember(raw->form(), context); },
                       .load = screen->run(beginFamily)});
    return screen;
}

} // namespace family
