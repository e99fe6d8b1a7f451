#include "calendar/date_help.h"
#include "memorials/booking_rules.h"
#include "memorials/detail_rules.h"
#include "memorials/extra_rules.h"
#include "memorials/memorial_screens.h"
#include "ui/layout.h"

using namespace Qt::StringLiterals;

namespace memorials {

namespace {

// The rows under the secular name; the frame of the deceased ends with them.
void layOutDeceased(ui::Layout& layout, ServiceForm& form) {
    layout.row(u"カナ"_s)
        .shown(HOSHIREN_CONTROL(form, frm31_zoknamek), 16)
        .row(u"戒名"_s)
        .shown(HOSHIREN_CONTROL(form, frm31_kaimyoug), 18)
        .row(u"カナ"_s)
        .shown(HOSHIREN_CONTROL(form, frm31_kaimyouk), 18)
        .row(u"命日"_s)
        .shown(HOSHIREN_CONTROL(form, frm31_mei_gymd), 11)
        .note(u"享年"_s)
        .shown(HOSHIREN_CONTROL(form, frm31_kyounen), 3);
    layout.row(u"関係者"_s)
        .shown(HOSHIREN_CONTROL(form, frm31_moshu), 9)
        .note(u"続柄"_s)
        .shown(HOSHIREN_CONTROL(form, frm31_mshzkgr), 6);
    layout.row(u"備考"_s).shown(HOSHIREN_CONTROL(form, frm31_kaak_bikou), 20);
}

void layOutHousehold(ui::Layout& layout, ServiceForm& form) {
    layout.frame(u"故人の情報"_s, u"故人の情報"_s)
        .row(u"登録番号"_s)
        .shown(HOSHIREN_CONTROL(form, frm31_no), 4)
        .row(u"檀家名"_s)
        .shown(HOSHIREN_CONTROL(form, frm31_dankag), 9)
        .shown(HOSHIREN_CONTROL(form, frm31_dankak), 9)
        .named(u"檀家名カナ"_s);
}

// own is the memorial that the boxes are of; none for a new one.
void layOutBooking(ui::Layout& layout, ui::Screen& screen, ServiceForm& form, const QString& dayName,
                   const std::function<const store::tbl_hohyo*()>& own) {
    layout.row(u"予約日"_s)
        .dates({u"予約年号"_s, u"予約年"_s, u"予約月"_s, dayName, u"予約YMD"_s}, form.予約,
               calendar::dateHelp(screen.desk(), form.予約))
        .row()
        .live(
            u"予約状況"_s,
            [&screen, &form, own] {
                store::Database database = calendar::impatientDatabase();
                const BookingState state = bookingState(database, form, own(), screen.desk().today());
                return ui::LiveText{state.text, state.warns};
            },
            {u"予約年号"_s, u"予約年"_s, u"予約月"_s, dayName, u"frm31_am"_s, u"frm31_pm"_s, u"開始時"_s, u"開始分"_s},
            28, 2)
        .row(u"開始時間"_s)
        .options(u"開始時間"_s, {},
                 {{HOSHIREN_CONTROL(form, frm31_am), u"午前"_s}, {HOSHIREN_CONTROL(form, frm31_pm), u"午後"_s}})
        .combo(HOSHIREN_CONTROL(form, 開始時), 3)
        .numeric()
        .named(u"開始時間　時"_s)
        .unit(u"時"_s)
        .combo(HOSHIREN_CONTROL(form, 開始分), 3)
        .numeric()
        .named(u"開始時間　分"_s)
        .unit(u"分"_s)
        .row(u"場所"_s)
        .combo(HOSHIREN_CONTROL(form, frm31_法要場所), 14);
}

void layOutHolding(ui::Layout& layout, ui::Screen& screen, ServiceForm& form, const QString& listName,
                   const QString& offeringLabel, ui::Operation asBooked) {
    layout.row(u"実施日"_s)
        .dates({u"実施年号"_s, u"実施年"_s, u"実施月"_s, u"実施日付"_s, u"実施YMD"_s}, form.実施,
               calendar::dateHelp(screen.desk(), form.実施))
        .row()
        .button(u"実施日"_s, u"予約通り実施"_s, std::move(asBooked), u"実施日が予約日と同じ時に押して下さい"_s)
        .row(u"施主"_s)
        .list(listName, form.施主, 12, 5)
        .isInput()
        .row(u"施主の続柄"_s)
        .combo(HOSHIREN_CONTROL(form, frm31_続柄), 8)
        .row(offeringLabel)
        .number(HOSHIREN_CONTROL(form, frm31_ofuse), 7)
        .row(u"備考"_s)
        .text(HOSHIREN_CONTROL(form, frm31_hoybikou), 28);
}

constexpr ui::Keeps kept{.household = true, .deceased = true, .memorial = true};

} // namespace

std::unique_ptr<ui::Screen> 法要明(ui::Workplace& workplace) {
    auto screen =
        std::make_unique<ui::FormScreen<法要明Form>>(workplace, u"法要明"_s, u"法要記録"_s, u"法要明細"_s, kept);
    auto* raw = screen.get();
    法要明Form& form = screen->form();
    ui::Layout layout(*screen);
    layOutHousehold(layout, form);
    layout.row(u"俗名"_s).shown(HOSHIREN_CONTROL(form, frm31_zoknameg), 16);
    layOutDeceased(layout, form);
    layout.beside()
        .frame(u"法要内容"_s, u"法要内容"_s)
        .row(u"法要名"_s)
        .shown(HOSHIREN_CONTROL(form, frm31_hohyo_mei), 14)
        .row(u"法要日"_s)
        .shown(HOSHIREN_CONTROL(form, frm31_ygymd), 14)
        .button(u"予約日"_s, u"法要日に予約"_s, screen->run(bookOnScheduledDay),
                u"予約日と法要日が同じ時に押して下さい"_s);
    layOutBooking(layout, *screen, form, u"予約日付"_s,
                  [raw] { return raw->form().held ? &raw->form().held.row() : nullptr; });
    layOutHolding(layout, *screen, form, u"frm31_kankeisha"_s, u"供養料"_s, [raw] { holdAsBooked(raw->form()); });
    layout.mainAction(u"更新"_s, u"更新"_s, screen->run(updateDetail))
        .gap()
        .action(u"予約取消"_s, u"予約取消"_s, screen->run(cancelDetail))
        .action(u"削除"_s, u"削除"_s, screen->run(removeDetail))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginDetail));
    screen->showsHeld({.publish = [raw](desk::ScreenContext& context) { publishShown(raw->form(), context); },
                       .asked = askedMemorial,
                       .load = screen->run(beginDetail)});
    return screen;
}

std::unique_ptr<ui::Screen> 法要外(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<法要外Form>>(workplace, u"法要外"_s, u"法要・回忌外"_s,
                                                               u"法要・回忌外登録"_s, kept);
    auto* raw = screen.get();
    法要外Form& form = screen->form();
    ui::Layout layout(*screen);
    layOutHousehold(layout, form);
    layout.row(u"俗名"_s).list(HOSHIREN_CONTROL(form, frm31_zoknameg), 16, 5, screen->run(chooseDeceased));
    layOutDeceased(layout, form);
    layout.beside()
        .frame(u"法要内容"_s, u"法要内容"_s)
        .row(u"法要名"_s)
        .text(HOSHIREN_CONTROL(form, frm31_hohyo_mei), 14)
        .row(u"法要日"_s)
        .shown(HOSHIREN_CONTROL(form, frm31_ygymd), 14);
    layOutBooking(layout, *screen, form, u"予約日"_s,
                  [raw] { return raw->form().registered ? &raw->form().registered.row() : nullptr; });
    layOutHolding(layout, *screen, form, u"関係者"_s, u"お布施"_s, [raw] { holdAsBooked(raw->form()); });
    layout.mainAction(u"登録"_s, u"登録"_s, screen->run(registerExtra))
        .gap()
        .action(u"予約取消"_s, u"予約取消"_s, screen->run(cancelExtra))
        .action(u"削除"_s, u"削除"_s, screen->run(removeExtra))
        .closing()
        .finish();
    screen->onOpen(screen->run(beginExtra));
    screen->showsHeld({.name = [raw](desk::ScreenContext& context) { nameOpened(raw->form(), context); },
                       .asked = [raw](const desk::ScreenContext& context) { return askedExtra(raw->form(), context); },
                       .load = screen->run(beginExtra)});
    return screen;
}

} // namespace memorials
