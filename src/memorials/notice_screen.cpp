#include "memorials/memorial_screens.h"
#include "memorials/notice_rules.h"
#include "ui/label_buttons.h"
#include "ui/list_view.h"

using namespace Qt::StringLiterals;

namespace memorials {

std::unique_ptr<ui::Screen> 法要通(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<法要通Form>>(workplace, u"法要通"_s, u"法要通知"_s, u"法要通知"_s);
    auto* raw = screen.get();
    法要通Form& form = screen->form();
    ui::Layout layout(*screen);
    layout.frame()
        .row(u"通知検索開始日"_s)
        .range(HOSHIREN_CONTROL(form, frm02_from), HOSHIREN_CONTROL(form, frm02_to),
               {.fromLeft = screen->run(leaveNoticesFrom),
                .toLeft = screen->run(leaveNoticesTo),
                .entered = screen->run(showNotices)});
    ui::addList(layout, *screen, form, screen->run(openNoticeDeceased));
    layout.mainAction(u"表示"_s, u"表示"_s, screen->run(showNotices));
    ui::addListButtons(layout, *screen, form);
    ui::addLabelButtons(layout, *screen, *form.choice,
                        {.setUp = screen->run(setUpNotices),
                         .preview = [raw](auto& to) { previewNotices(raw->form(), to, raw->desk()); },
                         .print = [raw](auto& to) { notifyRange(raw->form(), to, raw->desk()); }});
    layout.action(u"通知取消"_s, u"通知取消"_s, screen->run(takeBackNotices))
        .gap()
        .action(u"故人照会"_s, u"故人照会"_s, screen->run(openNoticeDeceased))
        .action(u"檀家照会"_s, u"檀家照会"_s, screen->run(openNoticeHousehold))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginNotices));
    return screen;
}

} // namespace memorials
