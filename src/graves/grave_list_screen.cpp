#include "graves/grave_screens.h"

#include "graves/grave_list_rules.h"
#include "ui/list_view.h"

using namespace Qt::StringLiterals;

namespace graves {

std::unique_ptr<ui::Screen> お墓一(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<お墓一Form>>(workplace, u"お墓一"_s, u"お墓一覧"_s, u"お墓一覧"_s);
    auto& form = screen->form();
    const ui::Operation open = screen->run(openGrave);
    ui::Layout layout(*screen);
    layout.frame()
        .row(u"お墓の位置(区画）"_s, u"Label1"_s)
        .combo(HOSHIREN_CONTROL(form, frm21_block), 10, screen->run(chooseSection));
    ui::addList(layout, *screen, form, open);
    layout.mainAction(u"お墓"_s, u"お墓情報"_s, open)
        .action(u"檀家"_s, u"檀家情報"_s, screen->run(openHousehold))
        .gap();
    ui::addListButtons(layout, *screen, form);
    layout.closing().finish();
    screen->onOpen(screen->run(beginGraveList));
    return screen;
}

} // namespace graves
