#include "reports/reports_rules.h"

#include "calendar/spoken_date.h"
#include "reports/era_forms.h"
#include "values/dates.h"
#include "values/numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace reports {

namespace {

const QString title = u"帳票"_s;

// The number typed, with or without what is counted behind it (11, 11月); 0 for an empty optional box. Absent where it
// is none from 1 to the last.
std::optional<int> number(const desk::Text& box, Box use, QChar unit, int last) {
    QString text = box.text.trimmed();
    if (use == Box::unused || (use == Box::optional && text.isEmpty()))
        return 0;
    if (text.endsWith(unit))
        text.chop(1);
    const auto typed = values::readKeyNumber(text);
    return typed && *typed >= 1 && *typed <= last ? std::optional<int>(*typed) : std::nullopt;
}

// The year typed, Western or of an era.
std::optional<int> year(const desk::Text& box, Box use) {
    QString text = box.text.trimmed();
    if (use == Box::unused)
        return 0;
    if (text.endsWith(u'年'))
        text.chop(1);
    if (const auto western = values::readDate(text + u"年1月1日"_s))
        return western->year();
    store::Database database;
    const auto first = calendar::readSpoken(database, text + u"年1月1日"_s, {});
    return first ? std::optional(first->date.year()) : std::nullopt;
}

bool check(desk::Text& box, bool good, const QString& message, desk::Desk& desk) {
    box.colour = good ? desk::Colour::black : desk::Colour::red;
    if (good)
        return true;
    box.keyboard = box.whole = true;
    desk.notify(message, title);
    return false;
}

QString boxText(Box use, int value) {
    return use == Box::unused || value == 0 ? QString() : QString::number(value);
}

} // namespace

const Report& 帳票Form::chosen() const {
    const auto found = std::ranges::find(reports(), 帳票種類.text, &Report::title);
    return found == reports().end() ? reports().front() : *found;
}

void beginReports(帳票Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    form.帳票種類.items.clear();
    for (const Report& report : reports())
        form.帳票種類.items << report.title;
    form.帳票種類.text = form.帳票種類.items.front();
    chooseReport(form, context, desk);
}

void chooseReport(帳票Form& form, desk::ScreenContext&, desk::Desk& desk) {
    const Report& report = form.chosen();
    const Wish wish = report.preset(desk.today());
    form.帳票年.text = boxText(report.year, wish.year);
    form.帳票月.text = boxText(report.month, wish.month);
    form.帳票日.text = boxText(report.day, wish.day);
    desk::paint(desk::Colour::black, form.帳票年, form.帳票月, form.帳票日);
    form.帳票区分.items = report.kinds;
    form.帳票区分.text = report.kinds.value(wish.kind);
}

std::optional<printing::Listing> makeReport(帳票Form& form, desk::Desk& desk) {
    const Report& report = form.chosen();
    const auto asked = year(form.帳票年, report.year);
    if (!check(form.帳票年, asked.has_value(), u"年を正しく入力して下さい（例：2027、令和9）"_s, desk))
        return {};
    const auto month = number(form.帳票月, report.month, u'月', 12);
    if (!check(form.帳票月, month.has_value(), u"月を1から12で入力して下さい"_s, desk))
        return {};
    const int days = month.value_or(0) ? QDate(2024, *month, 1).daysInMonth() : 31; // 29 February, too
    const auto day = number(form.帳票日, report.day, u'日', days);
    if (!check(form.帳票日, day.has_value(), u"日を1から%1で入力して下さい"_s.arg(days), desk))
        return {};
    const int kind = static_cast<int>(std::max<qsizetype>(0, report.kinds.indexOf(form.帳票区分.text)));
    store::Database database;
    printing::Listing list = report.make(database, {.year = *asked, .month = *month, .day = *day, .kind = kind});
    list.date = EraForms(database).date(desk.today()) + u"現在"_s;
    return list;
}

} // namespace reports
