#include "reports/reports_screen.h"

#include "reports/reports_rules.h"
#include "ui/layout.h"
#include "ui/printed_list.h"

using namespace Qt::StringLiterals;

namespace reports {

std::unique_ptr<ui::Screen> 帳票(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<帳票Form>>(workplace, u"帳票"_s, u"帳票"_s, u"帳票"_s);
    auto* raw = screen.get();
    帳票Form& form = screen->form();
    // A box that the chosen report does not use cannot be typed into.
    const auto usable = [raw, &form](QWidget* box, const std::function<bool(const Report&)>& used) {
        raw->bind({box, nullptr, {}, [box, &form, used] { box->setEnabled(used(form.chosen())); }});
    };
    const auto way = [raw](void (*go)(ui::Screen&, printing::Listing)) {
        return [raw, go] {
            if (auto list = makeReport(raw->form(), raw->desk()))
                go(*raw, std::move(*list));
        };
    };
    ui::Layout layout(*screen);
    layout.frame().row(u"帳票の種類"_s).choice(HOSHIREN_CONTROL(form, 帳票種類), 16, screen->run(chooseReport));
    layout.row(u"年"_s).text(HOSHIREN_CONTROL(form, 帳票年), 6);
    usable(layout.last(), [](const Report& report) { return report.year != Box::unused; });
    layout.note(u"（例：2027、令和9）"_s);
    layout.row(u"月"_s).text(HOSHIREN_CONTROL(form, 帳票月), 3);
    usable(layout.last(), [](const Report& report) { return report.month != Box::unused; });
    layout.row(u"日"_s).text(HOSHIREN_CONTROL(form, 帳票日), 3);
    usable(layout.last(), [](const Report& report) { return report.day != Box::unused; });
    layout.row(u"区分"_s).choice(HOSHIREN_CONTROL(form, 帳票区分), 12, [] {});
    usable(layout.last(), [](const Report& report) { return !report.kinds.isEmpty(); });
    layout.mainAction(u"印刷"_s, u"印刷"_s, way(ui::printListing))
        .action(u"プレビュー"_s, u"プレビュー"_s, way(ui::previewListing))
        .action(u"PDF"_s, u"PDF"_s, way(ui::writeListing))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginReports));
    return screen;
}

} // namespace reports
