#include "graves/fee_notice_rules.h"
#include "graves/grave_screens.h"
#include "ui/label_buttons.h"
#include "ui/list_view.h"

using namespace Qt::StringLiterals;

namespace graves {

std::unique_ptr<ui::Screen> お墓通(ui::Workplace& workplace) {
    auto screen =
        std::make_unique<ui::FormScreen<お墓通Form>>(workplace, u"お墓通"_s, u"管理費通知"_s, u"お墓管理費通知"_s);
    auto* raw = screen.get();
    auto& form = screen->form();
    const ui::Operation open = screen->run(openFeeGrave);
    ui::Layout layout(*screen);
    layout.frame()
        .row(u"通知検索開始日"_s, u"Label1"_s)
        .range(HOSHIREN_CONTROL(form, frm21_from), HOSHIREN_CONTROL(form, frm21_to),
               {.fromLeft = screen->run(leaveFeesFrom),
                .toLeft = screen->run(leaveFeesTo),
                .entered = screen->run(showFees)})
        .check(HOSHIREN_CONTROL(form, 未納のみ), u"未納のみ"_s, screen->run(showFees));
    ui::addList(layout, *screen, form, open);
    layout.mainAction(u"表示"_s, u"表示"_s, screen->run(showFees));
    ui::addListButtons(layout, *screen, form);
    ui::addLabelButtons(layout, *screen, *form.choice,
                        {.setUp = screen->run(setUpFeeLabels),
                         .preview = [raw](auto& to) { previewFeeLabels(raw->form(), to, raw->desk()); },
                         .print = [raw](auto& to) { printFeeLabels(raw->form(), to, raw->desk()); }});
    layout.gap()
        .action(u"受領"_s, u"受領"_s, screen->run(receiveFees),
                u"『受領選択』の欄で選んだお墓の管理費を、今日受け取ったものとして記録します"_s)
        .gap()
        .action(u"お墓照会"_s, u"お墓情報"_s, open)
        .action(u"檀家照会"_s, u"檀家情報"_s, screen->run(openFeeHousehold))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginFeeNotices));
    return screen;
}

} // namespace graves
