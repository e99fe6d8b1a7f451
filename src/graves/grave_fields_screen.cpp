#include "graves/grave_fields_screen.h"

#include "calendar/date_help.h"

using namespace Qt::StringLiterals;

namespace graves {

namespace {

ui::DateNames dateNames(const QString& prefix) {
    return {prefix + u"年号"_s, prefix + u"年"_s, prefix + u"月"_s, prefix + u"日"_s, prefix + u"YMD"_s};
}

} // namespace

void addGraveFields(ui::Layout& layout, ui::Screen& screen, GraveFields& fields,
                    std::initializer_list<ui::OptionItem> kinds, ui::Operation lookUp) {
    const auto copy = [](desk::DateGroup& target, const desk::DateGroup& source) {
        return [&target, &source] { target.copyFrom(source); };
    };
    layout.frame({}, u"お墓"_s)
        .row(u"管理番号"_s)
        .number(HOSHIREN_CONTROL(fields, frm13_haka_no), 4)
        .namesRecord()
        .button(u"照会"_s, u"照会"_s, std::move(lookUp))
        .row(u"番地(区画）"_s)
        .text(HOSHIREN_CONTROL(fields, frm13_banchi1), 8)
        .text(HOSHIREN_CONTROL(fields, frm13_banchi2), 6)
        .named(u"番地(区画）2"_s)
        .row()
        .options(u"Frame3"_s, u"種別"_s, kinds)
        .row(u"墓標名"_s)
        .text(HOSHIREN_CONTROL(fields, frm13_bohyo), 16)
        .row(u"備考"_s)
        .text(HOSHIREN_CONTROL(fields, frm13_biko), 20);
    layout.beside()
        .frame({}, u"使用料・管理費"_s)
        .row(u"使用開始"_s)
        .dates(dateNames(u"開始"_s), fields.開始, calendar::dateHelp(screen.desk(), fields.開始))
        .button(
            u"今日"_s, u"今日"_s, [&] { startToday(fields, screen.desk()); },
            u"使用開始日が今日からの時に押して下さい"_s)
        .row(u"使用料"_s)
        .number(HOSHIREN_CONTROL(fields, 墓地使用料), 7)
        .row(u"受領日"_s)
        .dates(dateNames(u"受領"_s), fields.受領, calendar::dateHelp(screen.desk(), fields.受領))
        .button(u"使用料受日"_s, u"COPY"_s, copy(fields.受領, fields.開始),
                u"使用料受領日と使用開始日と同じ時に押して下さい"_s)
        .row(u"管理費"_s)
        .number(HOSHIREN_CONTROL(fields, 墓地管理費), 7)
        .row(u"受領日"_s)
        .dates(dateNames(u"管受"_s), fields.管受, calendar::dateHelp(screen.desk(), fields.管受))
        .button(u"管理受領"_s, u"COPY"_s, copy(fields.管受, fields.受領),
                u"管理費の受領日と使用料の受領日が同じ時に押して下さい"_s)
        .button(
            u"受領今日"_s, u"今日受領"_s, [&] { receiveToday(fields, screen.desk()); },
            u"管理費を今日受け取った時に押して下さい"_s)
        .row(u"次回請求"_s)
        .dates(dateNames(u"次回"_s), fields.次回, calendar::dateHelp(screen.desk(), fields.次回))
        .button(u"管理次回"_s, u"COPY"_s, copy(fields.次回, fields.管受),
                u"次回請求日の月・日が同じ時、押して、請求年を変えると便利です"_s)
        .button(
            u"次回翌年"_s, u"翌年"_s, [&] { billNextYear(fields, screen.desk()); },
            u"次回請求日を一年先に進めます。空の時は、管理費の受領日の一年後にします"_s);
}

} // namespace graves
