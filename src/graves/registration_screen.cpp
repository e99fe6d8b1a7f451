#include "graves/grave_screens.h"

#include "graves/grave_fields_screen.h"
#include "graves/registration_rules.h"

using namespace Qt::StringLiterals;

namespace graves {

std::unique_ptr<ui::Screen> お墓登(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<お墓登Form>>(workplace, u"お墓登"_s, u"お墓登録"_s, u"お墓 登録"_s,
                                                               ui::Keeps{.household = true, .grave = true});
    auto& form = screen->form();
    ui::Layout layout(*screen);
    layout.frame(u"Frame2"_s, u"檀家"_s)
        .row(u"檀家番号"_s)
        .shown(HOSHIREN_CONTROL(form, frm13_no), 4)
        .row(u"檀家名"_s)
        .shown(HOSHIREN_CONTROL(form, frm13_dankag), 10)
        .row(u"カナ"_s)
        .shown(HOSHIREN_CONTROL(form, frm13_dankak), 10)
        .row(u"檀家区分"_s)
        .options(
            {}, {},
            {{HOSHIREN_CONTROL(form, frm13_dnkkbn1), u"檀家"_s}, {HOSHIREN_CONTROL(form, frm13_dnkkbn2), u"一般"_s}});
    layout.beside().frame().row().list(HOSHIREN_CONTROL(form, frm13_all_bohyo), 12, 6, screen->run(pickGrave),
                                       u"お墓一覧"_s);
    layout.beside()
        .frame(u"Frame4"_s, u"檀家の情報(入力不可)"_s)
        .row(u"当主氏名"_s)
        .shown(HOSHIREN_CONTROL(form, frm13_toshug), 10)
        .note(u"カナシメイ"_s)
        .shown(HOSHIREN_CONTROL(form, frm13_toshuk), 12)
        .row(u"郵便番号"_s)
        .shown(HOSHIREN_CONTROL(form, frm13_yubinno), 6)
        .note(u"電話番号"_s)
        .shown(HOSHIREN_CONTROL(form, frm13_tel), 9)
        .row(u"住所1"_s)
        .shown(HOSHIREN_CONTROL(form, frm13_jyusho1), 28)
        .row()
        .shown(HOSHIREN_CONTROL(form, frm13_jyusho2), 28)
        .named(u"住所２行目"_s)
        .row(u"備考"_s)
        .shown(HOSHIREN_CONTROL(form, frm13_dnkbiko), 28);
    addGraveFields(layout, *screen, form,
                   {{HOSHIREN_CONTROL(form, frm13_haka2), u"家"_s}, {HOSHIREN_CONTROL(form, frm13_haka1), u"故人名"_s}},
                   screen->run(lookUpGrave));
    layout.mainAction(u"更新"_s, u"更新"_s, screen->run(updateGrave))
        .gap()
        .action(u"区画紐付"_s, u"区画でお墓の紐付け"_s, screen->run(linkBySection))
        .action(u"墓標紐付"_s, u"墓標でお墓の紐付け"_s, screen->run(linkByMarker))
        .gap()
        .action(u"削除"_s, u"削除"_s, screen->run(removeGrave))
        .action(u"廃棄"_s, u"廃棄"_s, screen->run(disposeGrave))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginRegistration));
    auto* raw = screen.get();
    screen->showsHeld({.name = [raw](desk::ScreenContext& context) { nameShown(raw->form(), context); },
                       .asked = [raw](const desk::ScreenContext& context) { return askedGrave(raw->form(), context); },
                       .load = screen->run(beginRegistration)});
    return screen;
}

} // namespace graves
