#include "memorials/notice_rules.h"

#include "calendar/date_range.h"
#include "calendar/eras.h"
#include "printing/address_label_rules.h"
#include "store/row_rules.h"
#include "store/table.h"
#include "values/dates.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace memorials {

namespace {

using printing::LabelMode;

const QString title = u"法要通知"_s;
const QString noMemorial = u"法要予定はありません"_s;
const QString labelsAreOut =
    u"\n\n宛名は出力済みですが、通知済みの記録は出来ませんでした。もう一度通知処理を行うと、同じ宛名が再び出力されます。"_s;

std::vector<MemorialColumn> columns() {
    using desk::Align;
    return {
        {u"檀家NO"_s, 800, [](ListedRow row) { return QString::number(row.tblhoy_no); }, Align::right, Align::right},
        {u"檀家名"_s, 1000, [](ListedRow row) { return row.tblhoy_danknameg; }},
        {u"俗名"_s, 1400, [](ListedRow row) { return row.tblhoy_zokunameg; }},
        {u"回忌名"_s, 1400, [](ListedRow row) { return row.tblhoy_kaiki_mei; }},
        {u"回忌日"_s, 1600, [](ListedRow row) { return row.scheduledEra; }},
        {u"当主"_s, 1400, householdText(&store::tbl_danka::tbldnk_toshug)},
        {u"住所"_s, 2500, householdText(&store::tbl_danka::tbldnk_jyusho1)},
        {u"TEL"_s, 1600, householdText(&store::tbl_danka::tbldnk_tel)},
        {u"備考"_s, 2500, householdText(&store::tbl_danka::tbldnk_bikou)},
    };
}

bool checkTo(法要通Form& form, desk::Desk& desk) {
    const auto to = calendar::checkRangeEnd(form.frm02_to, form.from, title, desk);
    form.to = to.value_or(form.to);
    return to.has_value();
}

// A new start is tested against the end at once.
bool checkFrom(法要通Form& form, desk::Desk& desk) {
    const auto from = calendar::checkRangeStart(form.frm02_from, title, desk);
    form.from = from.value_or(form.from);
    return from && checkTo(form, desk);
}

void markNotified(store::Database& database, const 法要通Form& form, QDate day) {
    store::Write write(database);
    SQLite::Statement mark(database.engine(), "UPDATE tbl_hohyo SET tblhoy_tsuchi_s = ?, tblhoy_tsuchi_ymd = ? "
                                              "WHERE tblhoy_kaiki_yymd BETWEEN ? AND ? AND " +
                                                  store::isOpenForNotice.sql());
    store::bindValue(mark, 1, store::codes::yes);
    store::bindValue(mark, 2, day);
    store::bindValue(mark, 3, form.from);
    store::bindValue(mark, 4, form.to);
    mark.exec();
    write.commit();
}

} // namespace

法要通Form::法要通Form()
    : ListForm({.title = title,
                .nothing = noMemorial,
                .columns = columns(),
                .key =
                    [](ListedRow row) {
                        return NoticeKey{row.tblhoy_kaiki_yymd, row.tblhoy_zokunameg, MemorialTie::of(row)};
                    },
                .place =
                    [](const NoticeKey& key) {
                        return NoticeKey{key.scheduled, key.deceased, {}};
                    },
                .listed = store::isOpenForNotice,
                .complete = [](std::vector<ListedMemorial>& page,
                               desk::Desk& desk) { fillEraTextsAndHouseholds(page, title, desk); },
                .exists = [](ListedRow row) { return memorialExists(row); }},
               {}) {}

// A day's open memorials are few: they are put in order here, which costs less than to have all of its rows sorted
// whole.
bool 法要通Form::read(const NoticeKey& key, const Take& take) const {
    store::Database database;
    store::Selection<store::tbl_hohyo> rows(database,
                                            "WHERE (tbl_hohyo.tblhoy_kaiki_yymd >= ?) And "
                                            "(tbl_hohyo.tblhoy_kaiki_yymd <= ?) "
                                            "ORDER BY tbl_hohyo.tblhoy_kaiki_yymd ASC ;",
                                            std::max(from, key.scheduled), to);
    // The names' order is the register's: by code point.
    const QByteArray name = key.deceased.toUtf8();
    const auto isFrom = [&](const store::tbl_hohyo& row) {
        const bool before = key.tie && row.tblhoy_kaiki_yymd == key.scheduled && MemorialTie::of(row) < *key.tie;
        return row.tblhoy_zokunameg.toUtf8() >= name && !before;
    };
    QDate day;
    std::vector<store::tbl_hohyo> open;
    const auto handOn = [&] {
        std::ranges::sort(
            open, [](const auto& one, const auto& other) { return MemorialTie::of(one) < MemorialTie::of(other); });
        return std::ranges::all_of(std::exchange(open, {}), [&](const auto& row) { return take({row}); });
    };
    bool found = false;    // on a day before
    bool foundNow = false; // from there on, or on this day
    while (rows.next()) {
        const store::tbl_hohyo& row = rows.row();
        if (row.tblhoy_kaiki_yymd != day) {
            if (!handOn())
                return true;
            day = row.tblhoy_kaiki_yymd;
            found = foundNow;
        }
        const bool wanted = found || isFrom(row);
        foundNow = foundNow || wanted;
        if (wanted && store::isOpenForNotice(row))
            open.push_back(row);
    }
    handOn();
    return foundNow;
}

int 法要通Form::total() const {
    store::Database database;
    return store::countRows<store::tbl_hohyo>(
        database, "WHERE tblhoy_kaiki_yymd BETWEEN ? AND ? AND " + store::isOpenForNotice.sql(),
        std::max(from, list.start().scheduled), to);
}

void beginNotices(法要通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    form.from = desk.today();
    form.to = form.from.addYears(1);
    form.frm02_from.text = values::dateText(form.from);
    form.frm02_to.text = values::dateText(form.to);
}

void leaveNoticesFrom(法要通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    checkFrom(form, desk);
}

void leaveNoticesTo(法要通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    checkTo(form, desk);
}

void showNotices(法要通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    if (!checkFrom(form, desk))
        return;
    form.list.setStart({form.from, {}, {}});
    form.showFirstPage(desk);
}

void openNoticeDeceased(法要通Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const ListedMemorial* row = form.list.selected();
    if (!row)
        return;
    publishMemorial(*row, context);
    desk.open(u"過去登"_s);
}

void openNoticeHousehold(法要通Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const ListedMemorial* row = form.list.selected();
    if (!row)
        return;
    context.G初期値();
    context.publishHousehold(row->tblhoy_no);
    desk.open(u"檀家登"_s);
}

void notifyRange(法要通Form& form, printing::LabelPrinter& printer, desk::Desk& desk) {
    const auto outcome = printing::宛名出力(form.from, form.to, LabelMode::memorials, printer, desk);
    if (outcome == printing::LabelOutcome::failed)
        return;
    try {
        store::Database database;
        if (!store::Table(database, store::idxhoy_yymd).seek(store::Seek::atOrAfter, form.from)) {
            desk.notify(noMemorial, title);
            return;
        }
        markNotified(database, form, desk.today());
    } catch (const std::exception& failure) {
        if (outcome != printing::LabelOutcome::handedOver)
            throw;
        throw store::Error(0, store::explain(failure) + labelsAreOut);
    }
}

void previewNotices(const 法要通Form& form, printing::LabelPrinter& preview, desk::Desk& desk) {
    printing::previewLabels(form.from, form.to, LabelMode::memorials, preview, desk);
}

} // namespace memorials
