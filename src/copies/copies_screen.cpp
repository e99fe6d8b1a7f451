#include "copies/copies_screen.h"

#include "copies/copies_rules.h"
#include "ui/layout.h"

using namespace Qt::StringLiterals;

namespace copies {

std::unique_ptr<ui::Screen> 控え(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<控えForm>>(workplace, u"控え"_s, u"控え"_s, u"控え"_s);
    auto& form = screen->form();
    const ui::Operation narrowed = screen->run(narrow);
    ui::Layout layout(*screen);
    layout.frame(u"Frame1"_s, u"控えと、削除したもの"_s)
        .row()
        .grid(HOSHIREN_CONTROL(form, 控え一覧), {.clicked = screen->run(chooseSource)}, 6);
    layout.last()->setAccessibleName(u"控えと、削除したもの"_s);
    layout.frame().row(u"絞り込み"_s).text(HOSHIREN_CONTROL(form, 絞り込み), 12);
    screen->onEnter(layout.last(), narrowed);
    layout.button(u"絞り込む"_s, u"絞り込む"_s, narrowed)
        .shown(HOSHIREN_CONTROL(form, 比較結果), 24)
        .named(u"比較の結果"_s);
    layout.frame(u"Frame2"_s, u"今の登録簿との違い"_s)
        .row()
        .grid(HOSHIREN_CONTROL(form, 控え内容),
              {.clicked = screen->run(chooseRecord), .opened = screen->run(bringBackChosen)}, 8);
    layout.last()->setAccessibleName(u"今の登録簿との違い"_s);
    layout.mainAction(u"選んで戻す"_s, u"選んで戻す"_s, screen->run(bringBackChosen))
        .gap()
        .action(u"一覧更新"_s, u"一覧を読み直す"_s, screen->run(beginCopies))
        .gap()
        .action(u"全部戻す"_s, u"全部戻す"_s, screen->run(restoreAll))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginCopies));
    return screen;
}

} // namespace copies
