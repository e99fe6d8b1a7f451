#include "graves/grave_screens.h"

#include "graves/grave_fields_screen.h"
#include "graves/new_grave_rules.h"

using namespace Qt::StringLiterals;

namespace graves {

std::unique_ptr<ui::Screen> お墓新(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<お墓新Form>>(workplace, u"お墓新"_s, u"お墓登録"_s,
                                                               u"お墓 新規登録"_s, ui::Keeps{.grave = true});
    auto& form = screen->form();
    ui::Layout layout(*screen);
    layout.frame().row(u"檀家名"_s).shown(HOSHIREN_CONTROL(form, frm13_dnknameg), 10);
    addGraveFields(layout, *screen, form,
                   {{HOSHIREN_CONTROL(form, frm13_haka2), u"家"_s},
                    {HOSHIREN_CONTROL(form, frm13_haka1), u"故人名"_s},
                    {HOSHIREN_CONTROL(form, frm13_haka3), u"空き"_s}},
                   screen->run(lookUpGrave));
    layout.mainAction(u"登録"_s, u"登録"_s, screen->run(registerGrave))
        .updating(u"更新"_s, u"更新"_s, screen->run(updateGrave))
        .action(u"新規"_s, u"新規"_s, screen->run(newGrave))
        .gap()
        .action(u"削除"_s, u"削除"_s, screen->run(removeGrave))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginNewGrave));
    auto* raw = screen.get();
    screen->showsHeld({.name = [raw](desk::ScreenContext& context) { nameShown(raw->form(), context); },
                       .asked = [](const desk::ScreenContext& context) { return askedGrave(context); },
                       .load = screen->run(beginNewGrave)});
    return screen;
}

} // namespace graves
