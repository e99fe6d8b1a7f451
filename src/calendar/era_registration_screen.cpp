#include "calendar/era_registration_screen.h"

#include "calendar/era_registration_rules.h"
#include "ui/layout.h"

using namespace Qt::StringLiterals;

namespace calendar {

std::unique_ptr<ui::Screen> 年号登(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<年号登Form>>(workplace, u"年号登"_s, u"年号登録"_s, u"年号登録"_s);
    auto& form = screen->form();
    ui::Layout layout(*screen);
    layout.frame()
        .row(u"年号名"_s)
        .text(HOSHIREN_CONTROL(form, fnen_nengo), 6)
        .namesRecord()
        .button(u"西暦照会"_s, u"西暦照会"_s, screen->run(lookUpYears))
        .row(u"西暦(開始年)"_s)
        .number(HOSHIREN_CONTROL(form, fnen_snen), 4)
        .button(u"年号照会"_s, u"年号照会"_s, screen->run(lookUpEra))
        .row(u"(終了年)"_s)
        .number(HOSHIREN_CONTROL(form, fnen_enen), 4);
    layout.mainAction(u"登録"_s, u"登録"_s, screen->run(registerEra))
        .updating(u"更新"_s, u"更新"_s, screen->run(updateEra))
        .gap()
        .action(u"削除"_s, u"削除"_s, screen->run(removeEra))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginEras));
    screen->showsHeld({.lookUp = screen->run(lookUpNamedEra)});
    return screen;
}

} // namespace calendar
