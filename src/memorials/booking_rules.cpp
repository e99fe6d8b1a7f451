#include "memorials/booking_rules.h"

#include "calendar/spoken_date.h"
#include "memorials/listed_memorial.h"
#include "memorials/schedule_rules.h"
#include "store/row_rules.h"
#include "store/table.h"
#include "values/numbers.h"

#include <algorithm>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace memorials {

namespace {

constexpr int noon = 12;
constexpr int hoursOfADay = 24;
constexpr int minutesOfAnHour = 60;
constexpr std::ptrdiff_t bookingsNamed = 4; // the label has no room for a whole 彼岸

std::optional<int> beginningOf(const store::tbl_hohyo& row) {
    return beginning(row.tblhoy_kaiki_ampm == store::codes::morning, row.tblhoy_kaiki_hour, row.tblhoy_kaiki_mint);
}

bool same(const store::tbl_hohyo& one, const store::tbl_hohyo& other) {
    return desk::keyText(one) == desk::keyText(other);
}

QString describe(const store::tbl_hohyo& row, bool overlaps) {
    QStringList parts{beginningOf(row) ? startTimeText(row) : u"時間未定"_s, row.tblhoy_danknameg,
                      row.tblhoy_zokunameg + u'（' + row.tblhoy_kaiki_mei + u'）', row.tblhoy_kaiki_basho};
    parts.removeAll(QString());
    return (overlaps ? u"【重なり】"_s : u"・"_s) + parts.join(u' ');
}

} // namespace

std::optional<int> beginning(bool morning, std::optional<std::int16_t> hour, std::optional<std::int16_t> minute) {
    const int minutes = minute.value_or(0);
    if (!hour || *hour < 1 || *hour > hoursOfADay || minutes < 0 || minutes > minutesOfAnHour)
        return {};
    return (morning || *hour >= noon ? *hour : *hour + noon) * minutesOfAnHour + minutes;
}

BookingState bookingState(store::Database& database, const ServiceForm& form, const store::tbl_hohyo* own,
                          QDate today) {
    const auto day = calendar::typedDate(database, form.予約, today);
    if (!day)
        return {};
    std::vector<store::tbl_hohyo> others = store::selectAll<store::tbl_hohyo>(
        database,
        "INDEXED BY idxhoy_rymd WHERE tbl_hohyo.tblhoy_kaiki_rymd = ? AND " + store::isAwaited.sql() +
            " ORDER BY tbl_hohyo.tblhoy_zokunameg ASC, tbl_hohyo.tblhoy_no ASC",
        *day);
    std::erase_if(others, [own](const store::tbl_hohyo& row) { return own && same(row, *own); });
    std::stable_sort(others.begin(), others.end(), [](const store::tbl_hohyo& one, const store::tbl_hohyo& other) {
        return beginningOf(one).value_or(0) < beginningOf(other).value_or(0);
    });

    BookingState state;
    QStringList lines;
    // A service that is held was booked for a day that is past by now.
    if (*day < today && !(own && store::isHeld(*own))) {
        lines << u"予約日が過ぎています"_s;
        state.warns = true;
    }
    const auto typed =
        beginning(form.frm31_am.chosen, values::readInt16(form.開始時.text), values::readInt16(form.開始分.text));
    if (others.empty())
        lines << u"この日にほかの予約はありません"_s;
    else
        lines << u"この日のほかの予約 %1件"_s.arg(others.size());
    const auto overlaps = [&](const store::tbl_hohyo& row) {
        const auto begins = beginningOf(row);
        return typed && begins && std::abs(*typed - *begins) < minutesOfAService;
    };
    // Of a full day those that overlap are named before the rest.
    auto room = bookingsNamed - std::ranges::count_if(others, overlaps);
    std::ptrdiff_t unnamed = 0;
    for (const store::tbl_hohyo& row : others) {
        const bool meets = overlaps(row);
        state.warns = state.warns || meets;
        if (meets || room-- > 0)
            lines << describe(row, meets);
        else
            ++unnamed;
    }
    if (unnamed > 0)
        lines << u"・ほか%1件"_s.arg(unnamed);
    state.text = lines.join(u'\n');
    return state;
}

bool isScheduled(const store::tbl_hohyo& memorial) {
    return std::ranges::any_of(AnniversaryTable, [&](const Anniversary& anniversary) {
        return memorial.tblhoy_kaiki_mei == QStringView(anniversary.label) &&
               (!memorial.tblhoy_meiymd.isValid() ||
                memorial.tblhoy_kaiki_yymd == anniversaryDate(anniversary, memorial.tblhoy_meiymd));
    });
}

bool cancelBooking(store::Database& database, desk::Held<store::tbl_hohyo>& memorial, const QString& title,
                   desk::Desk& desk) {
    if (!memorial) {
        desk.notify(memorialMissing, title);
        return false;
    }
    QString refusal;
    if (store::isHeld(memorial.row()))
        refusal = u"実施済みの法要です。予約は取り消せません"_s;
    else if (!isScheduled(memorial.row()))
        refusal = extraIsDeleted;
    else if (!store::isReserved(memorial.row()))
        refusal = u"予約されていない法要です。取り消す予約がありません"_s;
    if (!refusal.isEmpty()) {
        desk.notify(refusal, title);
        return false;
    }
    if (!desk.ask(u"この法要の予約を取り消しますか？"_s, title, desk::Preset::no))
        return false;
    // What was typed into the other boxes was not saved with this: only the copy counts as saved.
    desk::Held<store::tbl_hohyo> written = memorial;
    if (!desk::change(written, database, {title, memorialMissing}, desk, [](store::tbl_hohyo& row) {
            row.tblhoy_kaiki_rs = store::codes::no;
            row.tblhoy_kaiki_rymd = QDate();
            row.tblhoy_kaiki_ampm = store::codes::morning;
            row.tblhoy_kaiki_hour = std::int16_t{0};
            row.tblhoy_kaiki_mint = std::int16_t{0};
        }))
        return false;
    memorial.show(written.row());
    desk.inform(u"予約を取り消しました"_s);
    return true;
}

} // namespace memorials
