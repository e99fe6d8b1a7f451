#include "memorials/memorial_screens.h"
#include "memorials/reservation_rules.h"
#include "ui/list_view.h"

using namespace Qt::StringLiterals;

namespace memorials {

std::unique_ptr<ui::Screen> 法要一(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<法要一Form>>(workplace, u"法要一"_s, u"法要予定"_s, u"法要 予定"_s);
    法要一Form& form = screen->form();
    ui::Layout layout(*screen);
    layout.frame()
        .row(u"予約日"_s)
        .range(HOSHIREN_CONTROL(form, frm02_from), HOSHIREN_CONTROL(form, frm02_to),
               {.fromLeft = screen->run(leaveReservationsFrom),
                .toLeft = screen->run(leaveReservationsTo),
                .entered = screen->run(showReservations)});
    ui::addList(layout, *screen, form, screen->run(openReservationDeceased));
    layout.mainAction(u"表示"_s, u"表示"_s, screen->run(showReservations));
    ui::addListButtons(layout, *screen, form);
    layout.gap()
        .action(u"故人照会"_s, u"故人照会"_s, screen->run(openReservationDeceased))
        .action(u"檀家照会"_s, u"檀家照会"_s, screen->run(openReservationHousehold))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginReservations));
    return screen;
}

} // namespace memorials
