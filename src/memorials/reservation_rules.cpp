#include "memorials/reservation_rules.h"

#include "calendar/date_range.h"
#include "calendar/spoken_date.h"
#include "store/row_rules.h"
#include "store/table.h"
#include "values/dates.h"

#include <limits>
#include <tuple>

using namespace Qt::StringLiterals;

namespace memorials {

namespace {

const QString title = u"法要 予定"_s;
constexpr int daysShown = 31;

// At or after the key in each of its fields, as the position is searched; at one place in the order of the ties.
bool isFrom(const store::tbl_hohyo& row, const ReservationKey& key) {
    const std::optional hour(key.hour);
    if (row.tblhoy_kaiki_rymd < key.day || row.tblhoy_kaiki_ampm < key.halfDay || row.tblhoy_kaiki_hour < hour)
        return false;
    return !key.tie || row.tblhoy_kaiki_rymd != key.day || row.tblhoy_kaiki_ampm != key.halfDay ||
           row.tblhoy_kaiki_hour != hour || !(MemorialTie::of(row) < *key.tie);
}

std::vector<MemorialColumn> columns() {
    using desk::Align;
    return {
        {u"予約日"_s, 1600, [](ListedRow row) { return row.reservedEra; }},
        {u"開始時間"_s, 1000, [](ListedRow row) { return startTimeText(row); }},
        {u"檀家名"_s, 1000, [](ListedRow row) { return row.tblhoy_danknameg; }},
        {u"檀家NO"_s, 800, [](ListedRow row) { return QString::number(row.tblhoy_no); }, Align::right, Align::right},
        {u"俗名"_s, 1400, [](ListedRow row) { return row.tblhoy_zokunameg; }},
        {u"回忌名"_s, 1400, [](ListedRow row) { return row.tblhoy_kaiki_mei; }},
        {u"回忌日"_s, 1600, [](ListedRow row) { return row.scheduledEra; }},
        {u"場所"_s, 1000, [](ListedRow row) { return row.tblhoy_kaiki_basho; }},
        {u"施主"_s, 1400, [](ListedRow row) { return row.tblhoy_kaiki_seshug; }},
        {u"住所"_s, 2500, householdText(&store::tbl_danka::tbldnk_jyusho1)},
        {u"TEL"_s, 1600, householdText(&store::tbl_danka::tbldnk_tel)},
        {u"備考"_s, 2500, [](ListedRow row) { return row.tblhoy_bikou; }},
        {{}, 0, [](ListedRow row) { return values::dateText(row.tblhoy_kaiki_yymd); }},
        {u"曜日"_s, 600, [](ListedRow row) { return calendar::weekday(row.tblhoy_kaiki_rymd); }, Align::center,
         Align::center},
    };
}

bool checkFrom(法要一Form& form, desk::Desk& desk) {
    const auto from = calendar::checkRangeStart(form.frm02_from, title, desk);
    form.from = from.value_or(form.from);
    return from.has_value();
}

bool checkTo(法要一Form& form, desk::Desk& desk) {
    const auto to = calendar::checkRangeEnd(form.frm02_to, form.from, title, desk);
    form.to = to.value_or(form.to);
    return to.has_value();
}

} // namespace

法要一Form::法要一Form()
    : ListForm({.title = title,
                .nothing = {},
                .columns = columns(),
                .key =
                    [](ListedRow row) {
                        return ReservationKey{row.tblhoy_kaiki_rymd, row.tblhoy_kaiki_ampm,
                                              row.tblhoy_kaiki_hour.value_or(0), MemorialTie::of(row)};
                    },
                .place =
                    [](const ReservationKey& key) {
                        return ReservationKey{key.day, key.halfDay, key.hour, {}};
                    },
                .listed = store::isAwaited,
                .complete = [](std::vector<ListedMemorial>& page,
                               desk::Desk& desk) { fillEraTextsAndHouseholds(page, title, desk); },
                .exists = [](ListedRow row) { return memorialExists(row); },
                .due = [](ListedRow row, QDate today) { return row.tblhoy_kaiki_rymd >= today; }},
               {}) {}

bool 法要一Form::read(const ReservationKey& key, const Take& take) const {
    // The first match lies at or after the key in the order of the index, too, and never before the range.
    constexpr auto earliestHour = std::numeric_limits<std::int16_t>::min();
    const ReservationKey bound = key.day < from ? ReservationKey{from, u""_s, earliestHour, {}} : key;
    store::Database database;
    store::Selection<store::tbl_hohyo> rows(
        database,
        "INDEXED BY idxhoy_rymd WHERE (tbl_hohyo.tblhoy_kaiki_rymd, tbl_hohyo.tblhoy_kaiki_ampm, "
        "tbl_hohyo.tblhoy_kaiki_hour) >= (?, ?, ?) And tbl_hohyo.tblhoy_kaiki_rymd <= ? "
        "ORDER BY tbl_hohyo.tblhoy_kaiki_rymd ASC, tbl_hohyo.tblhoy_kaiki_ampm ASC, "
        "tbl_hohyo.tblhoy_kaiki_hour ASC, tbl_hohyo.tblhoy_zokunameg ASC, tbl_hohyo.tblhoy_kaiki_yymd ASC, "
        "tbl_hohyo.tblhoy_no ASC ;",
        bound.day, bound.halfDay, bound.hour, to);
    bool found = false;
    while (rows.next()) {
        found = found || isFrom(rows.row(), key);
        if (found && !take({rows.row()}))
            break;
    }
    return found;
}

// Counted from the first row listed: whatever lies before it on its day is none of the list.
int 法要一Form::total() const {
    ReservationKey first;
    if (!read(list.start(), [&](const ListedMemorial& row) {
            first = list.key(row);
            return false;
        }))
        return 0;
    store::Database database;
    return store::countRows<store::tbl_hohyo>(
        database,
        "WHERE (tblhoy_kaiki_rymd, tblhoy_kaiki_ampm, tblhoy_kaiki_hour) >= (?, ?, ?) AND tblhoy_kaiki_rymd <= ? AND " +
            store::isAwaited.sql(),
        first.day, first.halfDay, first.hour, to);
}

void beginReservations(法要一Form& form, desk::ScreenContext&, desk::Desk& desk) {
    form.from = desk.today();
    form.to = form.from.addDays(daysShown);
    form.frm02_from.text = values::dateText(form.from);
    form.frm02_to.text = values::dateText(form.to);
}

void leaveReservationsFrom(法要一Form& form, desk::ScreenContext&, desk::Desk& desk) {
    checkFrom(form, desk);
}

void leaveReservationsTo(法要一Form& form, desk::ScreenContext&, desk::Desk& desk) {
    checkTo(form, desk);
}

void showReservations(法要一Form& form, desk::ScreenContext&, desk::Desk& desk) {
    if (!checkFrom(form, desk) || !checkTo(form, desk))
        return;
    form.list.setStart({form.from, u""_s, 0, {}});
    form.showFirstPage(desk);
}

void openReservationDeceased(法要一Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const ListedMemorial* row = form.list.selected();
    if (!row)
        return;
    publishMemorial(*row, context);
    form.open(u"過去登"_s, desk);
}

void openReservedService(法要一Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const ListedMemorial* row = form.list.selected();
    if (!row)
        return;
    publishMemorial(*row, context);
    desk.open(u"法要明"_s, desk::Opening::modal, [&form, &desk] { form.showPageAnew(desk); });
}

void openReservationHousehold(法要一Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const ListedMemorial* row = form.list.selected();
    if (!row)
        return;
    context.G初期値();
    context.publishHousehold(row->tblhoy_no);
    desk.open(u"檀家登"_s, desk::Opening::modal);
}

} // namespace memorials
