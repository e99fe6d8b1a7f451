#include "family/household_lists_screen.h"

#include "family/death_list_rules.h"
#include "family/family_list_rules.h"
#include "ui/list_view.h"

using namespace Qt::StringLiterals;

namespace family {

namespace {

// The household above a list of its living or dead.
void addHousehold(ui::Layout& layout, HouseholdBoxes& form) {
    layout.frame()
        .row(u"檀家名"_s)
        .shown(HOSHIREN_CONTROL(form, frm21_dankag), 14)
        .row(u"電話番号"_s)
        .shown(HOSHIREN_CONTROL(form, frm12_tel), 10)
        .row(u"地区"_s)
        .shown(HOSHIREN_CONTROL(form, frm12_chiku), 10);
    layout.beside()
        .frame()
        .row(u"郵便番号"_s)
        .shown(HOSHIREN_CONTROL(form, frm12_yubinno), 6)
        .row(u"住所1"_s)
        .shown(HOSHIREN_CONTROL(form, frm12_jyusho1), 26)
        .row()
        .shown(HOSHIREN_CONTROL(form, frm12_jyusho2), 26)
        .named(u"住所２行目"_s)
        .row(u"備考"_s)
        .shown(HOSHIREN_CONTROL(form, frm12_bikou), 26);
}

// Both lists hold the household that they were opened for.
template <class Form> void showsHousehold(ui::FormScreen<Form>& screen, ui::Operation load) {
    screen.shows({.publish = [&screen](desk::ScreenContext& context) { publishShown(screen.form(), context); },
                  .asked = desk::askedHousehold,
                  .load = std::move(load)});
}

} // namespace

std::unique_ptr<ui::Screen> 家族一(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<家族一Form>>(workplace, u"家族一"_s, u"家族一覧"_s, u"家族一覧"_s,
                                                               ui::Keeps{.household = true});
    auto& form = screen->form();
    const ui::Operation open = screen->run(openMember);
    ui::Layout layout(*screen);
    addHousehold(layout, form);
    ui::addList(layout, *screen, form, open);
    layout.mainAction(u"個別照会"_s, u"個別照会"_s, open).gap();
    ui::addListButtons(layout, *screen, form);
    layout.closing().finish();
    screen->onOpen(screen->run(beginFamilyList));
    showsHousehold(*screen, screen->run(beginFamilyList));
    return screen;
}

std::unique_ptr<ui::Screen> 過去一(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<過去一Form>>(workplace, u"過去一"_s, u"過去帳一覧"_s, u"過去帳一覧"_s,
                                                               ui::Keeps{.household = true, .deceased = true});
    auto& form = screen->form();
    const ui::Operation open = screen->run(openMemorialsOfDeceased);
    ui::Layout layout(*screen);
    addHousehold(layout, form);
    ui::addList(layout, *screen, form, open);
    layout.mainAction(u"個別照会"_s, u"個別法要"_s, open)
        .action(u"故人照会"_s, u"故人照会"_s, screen->run(openDeceased))
        .gap();
    ui::addListButtons(layout, *screen, form);
    layout.closing().finish();
    screen->onOpen(screen->run(beginDeathList));
    showsHousehold(*screen, screen->run(beginDeathList));
    return screen;
}

} // namespace family
