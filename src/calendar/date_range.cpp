#include "calendar/date_range.h"

#include "calendar/eras.h"

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

std::optional<QDate> checkRangeStart(store::Database& database, desk::Text& box, const QString& title,
                                     desk::Desk& desk) {
    return check(readDate(database, box.text), box, u"検索開始日ｴﾗｰです開始日を再度入力して下さい"_s, title, desk);
}

std::optional<QDate> checkRangeEnd(store::Database& database, desk::Text& box, QDate start, const QString& title,
                                   desk::Desk& desk) {
    auto date = readDate(database, box.text);
    if (date && *date < start)
        date.reset();
    return check(date, box, u"検索終了日ｴﾗｰです終了を再度入力して下さい"_s, title, desk);
}

} // namespace calendar
