// 法要予定表: the services reserved in a month and not held yet, as a calendar and, with all that is known, as a list.
#include "memorials/listed_memorial.h"
#include "reports/era_forms.h"
#include "reports/report.h"
#include "store/row_rules.h"
#include "store/table.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace reports {

namespace {

struct Booking {
    store::tbl_hohyo memorial;
    std::optional<store::tbl_danka> household;
};

printing::ListingCalendar calendarOf(const std::vector<Booking>& bookings, QDate first) {
    printing::ListingCalendar calendar{{u"日"_s, u"月"_s, u"火"_s, u"水"_s, u"木"_s, u"金"_s, u"土"_s}, {}};
    const auto before = static_cast<std::size_t>(first.dayOfWeek() % 7); // a week begins on Sunday
    const auto days = static_cast<std::size_t>(first.daysInMonth());
    calendar.days.resize((before + days + 6) / 7 * 7);
    for (std::size_t day = 0; day < days; ++day)
        calendar.days[before + day].label = QString::number(day + 1);
    for (const Booking& booking : bookings) {
        const store::tbl_hohyo& memorial = booking.memorial;
        calendar.days[before + static_cast<std::size_t>(memorial.tblhoy_kaiki_rymd.day() - 1)].entries
            << memorials::startTimeText(memorial) + u' ' + memorial.tblhoy_danknameg + u' ' + memorial.tblhoy_kaiki_mei;
    }
    return calendar;
}

printing::Listing make(store::Database& database, const Wish& wish) {
    EraForms eras(database);
    const QDate first(wish.year, wish.month, 1);
    std::vector<Booking> bookings;
    {
        store::Selection<store::tbl_hohyo> rows(
            database,
            "WHERE tbl_hohyo.tblhoy_kaiki_rymd >= ? And tbl_hohyo.tblhoy_kaiki_rymd <= ? And " +
                store::isAwaited.sql() +
                " ORDER BY tbl_hohyo.tblhoy_kaiki_rymd ASC, tbl_hohyo.tblhoy_kaiki_ampm ASC, "
                "tbl_hohyo.tblhoy_kaiki_hour ASC, tbl_hohyo.tblhoy_kaiki_mint ASC, tbl_hohyo.tblhoy_no, "
                "tbl_hohyo.tblhoy_zokunameg, tbl_hohyo.tblhoy_kaiki_yymd;",
            first, QDate(wish.year, wish.month, first.daysInMonth()));
        while (rows.next()) {
            // A date that is none is counted below.
            if (rows.row().tblhoy_kaiki_rymd.isValid())
                bookings.push_back({rows.row(), {}});
        }
    }
    store::Households households(database, store::idxdnk_no);
    for (Booking& booking : bookings)
        if (store::seekHousehold(households, booking.memorial.tblhoy_no))
            booking.household = households.row();

    printing::Listing list{.title = u"法要予定表"_s,
                           .range = eras.year(wish.year) + u"%1月　%2件"_s.arg(wish.month).arg(bookings.size()),
                           .lie = printing::Lie::across};
    list.blocks.emplace_back(calendarOf(bookings, first));
    using Row = const Booking&;
    if (!bookings.empty())
        list.blocks.emplace_back(tableOf<Booking>(
            bookings,
            {
                {u"開始時間"_s, [](Row booking) { return memorials::startTimeText(booking.memorial); }},
                {u"檀家NO"_s, [](Row booking) { return QString::number(booking.memorial.tblhoy_no); },
                 desk::Align::right},
                {u"檀家名"_s, [](Row booking) { return booking.memorial.tblhoy_danknameg; }},
                {u"俗名"_s, [](Row booking) { return booking.memorial.tblhoy_zokunameg; }},
                {u"戒名"_s, [](Row booking) { return booking.memorial.tblhoy_kaimyog; }},
                {u"回忌名"_s, [](Row booking) { return booking.memorial.tblhoy_kaiki_mei; }},
                {u"場所"_s, [](Row booking) { return booking.memorial.tblhoy_kaiki_basho; }},
                {u"施主"_s, [](Row booking) { return booking.memorial.tblhoy_kaiki_seshug; }},
                {u"TEL"_s, [](Row booking) { return booking.household ? booking.household->tbldnk_tel : QString(); }},
                {u"備考"_s, [](Row booking) { return booking.memorial.tblhoy_bikou; }},
            },
            {[](Row one, Row other) { return one.memorial.tblhoy_kaiki_rymd == other.memorial.tblhoy_kaiki_rymd; },
             [](std::span<const Booking> group) {
                 static const QString weekdays = u"月火水木金土日"_s;
                 const QDate day = group.front().memorial.tblhoy_kaiki_rymd;
                 return u"%1月%2日（%3）　%4件"_s.arg(day.month())
                     .arg(day.day())
                     .arg(weekdays.at(day.dayOfWeek() - 1))
                     .arg(group.size());
             }}));
    note(list, u"檀家情報を取得出来ない法要：%1件（TELは空欄です。DBの整合性を確認して下さい。）"_s,
         std::ranges::count_if(bookings, [](Row booking) { return !booking.household; }));
    note(list, u"予約日を読み取れない法要：%1件（この表には載っていません。DBの整合性を確認して下さい。）"_s,
         unreadableDates(database, "tbl_hohyo", "tblhoy_kaiki_rymd"));
    return list;
}

} // namespace

Report 法要予定表() {
    return {.title = u"法要予定表"_s,
            .year = Box::needed,
            .month = Box::needed,
            .preset = [](QDate today) { return Wish{.year = today.year(), .month = today.month()}; },
            .make = make};
}

} // namespace reports
