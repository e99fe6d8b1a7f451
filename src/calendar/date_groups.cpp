#include "calendar/date_groups.h"

#include "calendar/eras.h"
#include "values/dates.h"
#include "values/numbers.h"

#include <array>

using namespace Qt::StringLiterals;

namespace calendar {

namespace {

QString fieldName(std::int16_t field) {
    static const std::array names{u"使用開始日"_s, u"使用料受領日"_s, u"管理費受領日"_s, u"管理費次回請求日"_s,
                                  u"法要予定日"_s, u"法要実施日"_s,   u"生年月日"_s,     u"命日"_s};
    return names.at(static_cast<std::size_t>(field - 1));
}

} // namespace

void CHK日付(store::Database& database, desk::DateGroup& group, QString& western, desk::ScreenContext& context,
             desk::Desk& desk) {
    using desk::Colour;
    context.chk_ymd.clear();
    desk::paint(Colour::black, group.year, group.month, group.day);
    if (group.isEmpty())
        return;

    const QString name = fieldName(context.chk_dtidx);
    context.chk_dterr = 0;
    const auto checkNumber = [&](desk::Combo& box, const QString& unit) {
        // The number is stored in 16 bits: one that does not fit is as wrong as a letter.
        if (values::readInt16(box.text))
            return;
        context.chk_dterr = 1;
        box.colour = Colour::red;
        if (desk::recordFailure(context, name + u"　"_s + unit + u"に正しく入力して下さい"_s))
            box.moveToFront();
    };
    checkNumber(group.year, u"年"_s);
    checkNumber(group.month, u"月"_s);
    checkNumber(group.day, u"日"_s);
    if (context.chk_dterr != 0)
        return;

    const QString year = 元号変換(database, group.era.text, group.year.text, context.chk_dterr, desk);
    if (context.chk_dterr != 0)
        return;
    western = values::halfWidth(
        u"%1/%2/%3"_s.arg(year, QStringView(group.month.text).trimmed(), QStringView(group.day.text).trimmed()));
    const auto date = values::readDate(western);
    context.chk_ymd = date ? values::dateText(*date) : western;
    if (date)
        return;
    context.chk_dterr = 1;
    desk::paint(Colour::red, group.year, group.month, group.day);
    if (desk::recordFailure(context, name + u"　年月日に正しく入力して下さい"_s))
        group.year.keyboard = true;
}

QDate checkDate(store::Database& database, desk::DateGroup& group, DateField field, desk::ScreenContext& context,
                desk::Desk& desk) {
    context.chk_dterr = 0;
    context.chk_dtidx = field;
    QString western;
    CHK日付(database, group, western, context, desk);
    group.western.text = context.chk_ymd;
    const auto date = values::readDate(context.chk_ymd);
    group.western.colour = date || context.chk_ymd.isEmpty() ? desk::Colour::black : desk::Colour::red;
    return date.value_or(QDate());
}

QDate checkRequiredDate(store::Database& database, desk::DateGroup& group, DateField field,
                        desk::ScreenContext& context, desk::Desk& desk) {
    const QDate date = checkDate(database, group, field, context, desk);
    if (context.chk_ymd.isEmpty()) {
        context.chk_dterr = 1;
        group.western.colour = desk::Colour::red;
        if (desk::recordFailure(context, fieldName(field) + u"に正しく入力して下さい"_s))
            group.era.keyboard = true;
    }
    return date;
}

EraFields eraFields(const desk::DateGroup& group) {
    return {group.era.text, values::readInt16(group.year.text), values::readInt16(group.month.text),
            values::readInt16(group.day.text)};
}

void showDate(desk::DateGroup& group, const EraFields& era, QDate date) {
    group.era.text = era.gname;
    group.year.text = values::shownNumber(era.gyy);
    group.month.text = values::shownNumber(era.gmm);
    group.day.text = values::shownNumber(era.gdd);
    group.western.text = values::dateText(date);
}

void showDate(store::Database& database, desk::DateGroup& group, QDate date, desk::Desk& desk) {
    group.clear();
    if (!date.isValid())
        return;
    EraDate era;
    西暦変換(database, date, era, desk);
    group.era.text = era.era;
    group.year.text = era.year;
    group.month.text = QString::number(date.month());
    group.day.text = QString::number(date.day());
    group.western.text = values::dateText(date);
}

} // namespace calendar
