#include "calendar/date_help.h"

#include "calendar/spoken_date.h"

#include <algorithm>

namespace calendar {

store::Database impatientDatabase() {
    store::Database database;
    database.engine().setBusyTimeout(0);
    return database;
}

desk::DateHelp dateHelp(desk::Desk& desk, desk::DateGroup& group, DateOf what) {
    const auto today = [&desk] { return desk.today(); };
    return {[today, &group] {
                // An era's name has no digits: most often there is nothing to read.
                if (std::ranges::none_of(group.era.text, [](QChar c) { return c.isDigit(); }))
                    return false;
                try {
                    store::Database database = impatientDatabase();
                    return spreadSpoken(database, group, today());
                } catch (const std::exception&) {
                    // It stays as it was typed; the next operation says what is wrong with the register.
                    return false;
                }
            },
            [&desk, &group] {
                store::Database database;
                enterToday(database, group, desk);
            },
            [today, &group, what] {
                if (group.era.text.isEmpty())
                    return QString();
                store::Database database = impatientDatabase();
                const auto date = typedDate(database, group, today());
                return date ? dateHint(*date, today(), what == DateOf::birth) : QString();
            }};
}

} // namespace calendar
