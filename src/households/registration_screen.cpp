#include "households/household_screens.h"
#include "households/registration_rules.h"
#include "masters/postal_codes.h"
#include "ui/layout.h"

using namespace Qt::StringLiterals;

namespace households {

std::unique_ptr<ui::Screen> 檀家登(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<檀家登Form>>(workplace, u"檀家登"_s, u"檀家登録"_s, u"檀家 登録"_s,
                                                               ui::Keeps{.household = true});
    auto& form = screen->form();
    ui::Layout layout(*screen);
    layout.frame(u"檀家"_s, u"檀家さん"_s)
        .row(u"登録番号"_s)
        .number(HOSHIREN_CONTROL(form, frm01_no), 4)
        .namesRecord()
        .note(u"－"_s)
        .number(HOSHIREN_CONTROL(form, frm01_eno), 3)
        .named(u"登録番号　枝番"_s)
        .namesRecord()
        .button(u"照会"_s, u"照会"_s, screen->run(LoadHousehold))
        .row(u"檀家名"_s)
        .text(HOSHIREN_CONTROL(form, frm01_dankag), 12)
        .row(u"カナ"_s)
        .text(HOSHIREN_CONTROL(form, frm01_dankak), 16)
        .kanaOf(u"frm01_dankag"_s)
        .row(u"檀家区分"_s)
        .options(
            u"Frame2"_s, {},
            {{HOSHIREN_CONTROL(form, frm01_dnkkbn1), u"檀家"_s}, {HOSHIREN_CONTROL(form, frm01_dnkkbn2), u"一般"_s}})
        .row(u"当主氏名"_s)
        .text(HOSHIREN_CONTROL(form, frm01_toshug), 16)
        .row(u"カナシメイ"_s)
        .text(HOSHIREN_CONTROL(form, frm01_toshuk), 20)
        .kanaOf(u"frm01_toshug"_s);
    layout.below()
        .frame(u"連絡先"_s, u"連絡先"_s)
        .row(u"郵便番号"_s)
        .text(HOSHIREN_CONTROL(form, frm01_yubinno), 6)
        .onLeave(
            [&form, raw = screen.get()] { masters::fillAddress(form.frm01_yubinno, form.frm01_jyusho1, raw->desk()); })
        .row(u"住所1"_s)
        .text(HOSHIREN_CONTROL(form, frm01_jyusho1), 26)
        .row()
        .text(HOSHIREN_CONTROL(form, frm01_jyusho2), 26)
        .named(u"住所２行目"_s)
        .row(u"電話番号"_s)
        .text(HOSHIREN_CONTROL(form, frm01_tel), 9)
        .note(u"FAX"_s)
        .text(HOSHIREN_CONTROL(form, frm01_fax), 9)
        .row(u"地区"_s)
        .combo(HOSHIREN_CONTROL(form, frm01_地区), 12)
        .row(u"備考"_s)
        .text(HOSHIREN_CONTROL(form, frm01_biko), 26);
    layout.beside()
        .frame(u"お墓"_s, u"お墓"_s)
        .row(u"お墓区画（場所）"_s)
        .options(
            u"Frame1"_s, u"場所"_s,
            {{HOSHIREN_CONTROL(form, frm01_haka_nai), u"境内"_s}, {HOSHIREN_CONTROL(form, frm01_haka_soto), u"境外"_s}})
        .row(u"お墓"_s)
        .list(HOSHIREN_CONTROL(form, frm01_haka_no), 4, 12, {}, u"管理番号"_s)
        .list(HOSHIREN_CONTROL(form, frm01_haka_banchi), 5, 12, {}, u"区画番地"_s)
        .list(HOSHIREN_CONTROL(form, frm01_haka_banchi2), 4, 12, {}, u"　"_s)
        .named(u"区画番地2"_s)
        .list(HOSHIREN_CONTROL(form, frm01_haka_bohyo), 9, 12, {}, u"墓標"_s)
        .parallel(4);

    auto* raw = screen.get();
    const auto opener = [raw](const QString& target) {
        return [raw, target] { openForHousehold(raw->form(), raw->context(), raw->desk(), target); };
    };
    layout.mainAction(u"登録"_s, u"登録"_s, screen->run(RegisterHousehold))
        .updating(u"更新"_s, u"更新"_s, screen->run(UpdateHousehold))
        .action(u"新規"_s, u"新規"_s, screen->run(newHousehold))
        .gap()
        .action(u"家族一覧"_s, u"家族一覧"_s, opener(u"家族一"_s))
        .action(u"家族登録"_s, u"家族登録"_s, opener(u"家族登"_s))
        .action(u"過去帳一覧"_s, u"過去帳\n一覧"_s, opener(u"過去一"_s))
        .action(u"過去帳登録"_s, u"過去帳\n登録"_s, opener(u"過去登"_s))
        .action(u"回忌外"_s, u"回忌外\n法要"_s, opener(u"法要外"_s))
        .action(u"法要一覧"_s, u"法要一覧"_s, opener(u"法要檀"_s))
        .action(u"代替り"_s, u"代替処理"_s, opener(u"代替当"_s))
        .action(u"お墓登録"_s, u"お墓登録"_s, screen->run(openGraves))
        .gap()
        .action(u"削除"_s, u"削除"_s, screen->run(DeleteHousehold))
        .action(u"檀家抹消"_s, u"檀家抹消"_s, screen->run(eraseShownHousehold))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginHousehold));
    screen->showsHeld({.publish = [raw](desk::ScreenContext& context) { publishShown(raw->form(), context); },
                       .name = [raw](desk::ScreenContext& context) { nameShown(raw->form(), context); },
                       .asked = desk::askedHousehold,
                       .load = screen->run(loadBranch)});
    return screen;
}

} // namespace households
