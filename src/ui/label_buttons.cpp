#include "ui/label_buttons.h"

#include "printing/label_painter.h"

using namespace Qt::StringLiterals;

namespace ui {

void addLabelButtons(Layout& layout, Screen& screen, printing::LabelChoice& choice, LabelOperations run) {
    choice.stock = printing::stockKept();
    const auto rests = [&choice] { return choice.rests; };
    layout.gap()
        .action(u"宛名設定"_s, u"宛名設定"_s, std::move(run.setUp))
        .action(u"印刷プレビュー"_s, u"印刷プレビュー"_s,
                [&screen, preview = std::move(run.preview)] { preview(*printing::preview(&screen)); })
        .restsBecause(rests)
        .action(u"通知"_s, u"通知処理"_s,
                [&screen, print = std::move(run.print)] {
                    print(*printing::defaultPrinter(&screen, screen.desk().today()));
                })
        .restsBecause(rests);
}

} // namespace ui
