#include "calendar/date_range.h"

#include "calendar/spoken_date.h"
#include "store/database.h"
#include "values/dates.h"

using namespace Qt::StringLiterals;

namespace calendar {

namespace {

std::optional<QDate> check(std::optional<QDate> date, desk::Text& box, const QString& message, const QString& title,
                           desk::Desk& desk) {
    box.colour = date ? desk::Colour::black : desk::Colour::red;
    if (!date) {
        box.keyboard = true;
        desk.notify(message, title);
    }
    return date;
}

} // namespace

std::optional<QDate> rangeDate(const desk::Text& box) {
    if (const auto western = values::readDate(box.text))
        return western;
    // A date without its era could be of any: the boxes of a range are for distant years, too.
    store::Database database;
    const auto spoken = readSpoken(database, box.text, {});
    return spoken ? std::optional(spoken->date) : std::nullopt;
}

std::optional<QDate> checkRangeStart(desk::Text& box, const QString& title, desk::Desk& desk) {
    return check(rangeDate(box), box, u"検索開始日ｴﾗｰです開始日を再度入力して下さい"_s, title, desk);
}

std::optional<QDate> checkRangeEnd(desk::Text& box, QDate start, const QString& title, desk::Desk& desk) {
    auto date = rangeDate(box);
    if (date && *date < start)
        date.reset();
    return check(date, box, u"検索終了日ｴﾗｰです終了を再度入力して下さい"_s, title, desk);
}

} // namespace calendar
