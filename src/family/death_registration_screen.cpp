#include "calendar/date_help.h"
#include "family/death_registration_rules.h"
#include "family/family_screens.h"
#include "ui/layout.h"

using namespace Qt::StringLiterals;

namespace family {

std::unique_ptr<ui::Screen> 過去登(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<過去登Form>>(workplace, u"過去登"_s, u"過去帳登録"_s, u"過去帳登録"_s,
                                                               ui::Keeps{.household = true});
    auto& form = screen->form();
    ui::Layout layout(*screen);
    layout.frame(u"檀家"_s, u"檀家さん"_s)
        .row(u"登録番号"_s)
        .shown(HOSHIREN_CONTROL(form, frm11_no), 4)
        .row(u"檀家名"_s)
        .shown(HOSHIREN_CONTROL(form, frm11_dankag), 12)
        .row(u"カナ"_s)
        .shown(HOSHIREN_CONTROL(form, frm11_dankak), 16)
        .row(u"家族"_s)
        .list(HOSHIREN_CONTROL(form, frm11_kazoku), 12, 6, screen->run(takeMember), u"新規登録者用"_s)
        .list(HOSHIREN_CONTROL(form, frm11_lzoku), 6, 6, screen->run(takeMember), u"続柄"_s)
        .parallel(2)
        .row(u"過去帳"_s)
        .list(HOSHIREN_CONTROL(form, frm11_kakocho), 12, 6, screen->run(loadEntry), u"変更・削除用"_s);
    layout.beside()
        .frame(u"故人"_s, u"故人"_s)
        .row(u"俗名"_s)
        .text(HOSHIREN_CONTROL(form, frm11_zoknameg), 16)
        .row(u"カナ"_s)
        .text(HOSHIREN_CONTROL(form, frm11_zoknamek), 20)
        .kanaOf(u"frm11_zoknameg"_s)
        .row(u"生年月日"_s)
        .dates({u"生年元号"_s, u"生年"_s, u"生年月"_s, u"生年日"_s, u"生年YMD"_s}, form.生年,
               calendar::dateHelp(screen->desk(), form.生年)) // no age: he does not grow older
        .row(u"命日"_s)
        .dates({u"命日元号"_s, u"命日年"_s, u"命日月"_s, u"命日付"_s, u"命日YMD"_s}, form.命日,
               calendar::dateHelp(screen->desk(), form.命日))
        .row(u"享年"_s)
        .shown(HOSHIREN_CONTROL(form, frm11_kyounen), 3)
        .unit(u"歳"_s)
        .row(u"戒名"_s)
        .text(HOSHIREN_CONTROL(form, frm11_kaimyoug), 24)
        .row(u"カナ"_s)
        .text(HOSHIREN_CONTROL(form, frm11_kaimyouk), 31)
        .kanaOf(u"frm11_kaimyoug"_s)
        .row(u"関係者"_s)
        .combo(HOSHIREN_CONTROL(form, frm11_kankeisha), 14)
        .note(u"続柄"_s)
        .combo(HOSHIREN_CONTROL(form, frm11_続柄), 8)
        .row(u"備考"_s)
        .text(HOSHIREN_CONTROL(form, frm11_bikou), 31);
    layout.below()
        .frame(u"納骨"_s, u"お墓"_s)
        .row(u"種別"_s)
        .options(u"お墓種別"_s, {},
                 {{HOSHIREN_CONTROL(form, frm11_haka1), u"個人名"_s},
                  {HOSHIREN_CONTROL(form, frm11_haka2), u"家"_s},
                  {HOSHIREN_CONTROL(form, frm11_haka3), u"無し"_s}})
        .note(u"　場所"_s)
        .options(
            u"場所"_s, {},
            {{HOSHIREN_CONTROL(form, frm11_haka_nai), u"境内"_s}, {HOSHIREN_CONTROL(form, frm11_haka_soto), u"境外"_s}})
        .row(u"お墓"_s)
        .list(HOSHIREN_CONTROL(form, frm11_haka_abohyo), 12, 3, screen->run(takeGrave))
        .row(u"管理番号"_s)
        .number(HOSHIREN_CONTROL(form, frm11_haka_no), 4)
        .note(u"番地(場所）"_s)
        .text(HOSHIREN_CONTROL(form, frm11_haka_banchi), 6)
        .note(u"－"_s)
        .text(HOSHIREN_CONTROL(form, frm11_haka_blk2), 5)
        .named(u"番地(場所）2"_s);

    auto* raw = screen.get();
    const auto opener = [raw](const QString& target) { return [raw, target] { raw->desk().open(target); }; };
    layout.mainAction(u"登録"_s, u"登録"_s, screen->run(registerDeath))
        .updating(u"更新"_s, u"更新"_s, screen->run(updateDeath))
        .gap()
        .action(u"法要記録"_s, u"法要記録"_s, screen->run(openMemorials))
        .action(u"回忌外"_s, u"回忌外\n法要"_s, opener(u"法要外"_s))
        .action(u"代替り"_s, u"代替り\n処理"_s, opener(u"代替当"_s))
        .gap()
        .action(u"削除"_s, u"削除"_s, screen->run(removeDeath))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginDeathRegister));
    screen->showsHeld({.publish = [raw](desk::ScreenContext& context) { publishShown(raw->form(), context); },
                       .asked = [raw](const desk::ScreenContext& context) { return askedEntry(raw->form(), context); },
                       .load = screen->run(beginDeathRegister)});
    return screen;
}

} // namespace family
