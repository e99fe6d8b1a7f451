#include "ui/list_view.h"

#include "ui/plain_text.h"
#include "ui/printed_list.h"

#include <QLabel>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

Operation next(Screen& screen, desk::AnyList& list) {
    return [&screen, &list] { list.nextPage(screen.desk()); };
}

Operation previous(Screen& screen, desk::AnyList& list) {
    return [&screen, &list] { list.previousPage(screen.desk()); };
}

QLabel* addText(Layout& layout, const QString& name) {
    QLabel* text = plainLabel();
    text->setObjectName(name);
    layout.widget(text);
    return text;
}

// Shows the total once the page stands on the screen: counting may take longer than reading a page.
void addPlace(Layout& layout, Screen& screen, desk::AnyList& list) {
    layout.row();
    QLabel* label = addText(layout, u"件数表示"_s);
    QLabel* sum = list.sumsUp() ? addText(layout, u"合計表示"_s) : nullptr;
    const auto show = [label, sum, &list] {
        label->setText(list.件数表示.text);
        if (sum)
            sum->setText(list.合計表示.text);
    };
    screen.bind({label, nullptr, {}, [label, show, &screen, &list] {
                     show();
                     if (list.isCounted())
                         return;
                     QTimer::singleShot(0, label, [show, &screen, &list] {
                         if (screen.operating() || list.isCounted())
                             return;
                         list.count();
                         show();
                     });
                 }});
}

} // namespace

void addList(Layout& layout, Screen& screen, desk::AnyList& list, const Operation& opened) {
    layout.frame().row().grid(HOSHIREN_CONTROL(list, frm21_tbl),
                              {.clicked = [&screen, &list] { list.click(screen.context(), screen.desk()); },
                               .opened = opened,
                               .nextPage = [&screen, &list] { list.scrollOn(screen.desk()); },
                               .previousPage = [&screen, &list] { list.scrollBack(screen.desk()); }},
                              desk::pageRows);
    addPlace(layout, screen, list);
}

void addListButtons(Layout& layout, Screen& screen, desk::AnyList& list) {
    layout.action(u"前ページ"_s, u"前ページ"_s, previous(screen, list))
        .action(u"後ページ"_s, u"後ページ"_s, next(screen, list));
    addPrinting(layout, screen, list);
}

void addPrinting(Layout& layout, Screen& screen, const desk::AnyList& list) {
    layout.action(u"印刷"_s, u"印刷"_s, [&screen, &list] { previewListing(screen, listingOf(screen, list)); });
}

} // namespace ui
