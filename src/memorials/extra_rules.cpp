#include "memorials/extra_rules.h"

#include "calendar/date_groups.h"
#include "calendar/eras.h"
#include "store/row_rules.h"
#include "store/table.h"
#include "values/dates.h"

using namespace Qt::StringLiterals;

namespace memorials {

namespace {

const QString title = u"法要・回忌外登録"_s;

// The day that the memorial is scheduled on: the held date where there is one, else the reservation's; absent when
// neither is given.
QDate scheduledDate(const 法要外Form& form) {
    const auto held = values::readDate(form.実施.western.text);
    return held ? *held : values::readDate(form.予約.western.text).value_or(QDate());
}

bool isTaken(store::Database& database, const desk::ScreenContext& context, QDate day) {
    return day.isValid() &&
           store::find(database, store::idxhoy_hohyo, context.dnk_no1, context.kak_zokunameg, day).has_value();
}

store::tbl_hohyo newMemorial(const 法要外Form& form, const desk::ScreenContext& context, QDate today) {
    store::tbl_hohyo row;
    row.tblhoy_no = context.dnk_no1;
    row.tblhoy_danknameg = context.dnk_nameg;
    row.tblhoy_danknamek = context.dnk_namek;
    row.tblhoy_zokunameg = context.kak_zokunameg;
    row.tblhoy_zokunamek = context.kak_zokunamek;
    row.tblhoy_kaimyog = context.kak_kaimyoug;
    row.tblhoy_kaimyok = context.kak_kaimyouk;
    row.tblhoy_meiymd = context.kak_mei_ymd;
    row.tblhoy_kaiki_mei = form.frm31_hohyo_mei.text;
    row.tblhoy_kaiki_yymd = scheduledDate(form);
    writeService(form, row);
    if (store::isReserved(row)) {
        // Booked in person: no notice is due.
        row.tblhoy_tsuchi_s = store::codes::yes;
        row.tblhoy_tsuchi_ymd = row.tblhoy_kaiki_rymd;
    }
    row.tblhoy_kanaidx = store::kanaIndex(context.dnk_namek);
    row.tblhoy_add_ymd = today;
    return row;
}

void showEntry(store::Database& database, 法要外Form& form, const store::tbl_kakocho& entry,
               desk::ScreenContext& context, desk::Desk& desk) {
    context.publishDeceased(entry);
    showHousehold(form, context);
    showDeceased(database, form, context, desk);
}

// The list may have been moved without a click.
void followList(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const int line = form.frm31_zoknameg.current;
    if (form.frm31_zoknameg.currentText() != context.kak_zokunameg ||
        (line >= 0 && form.entryHouseholds.value(line) != context.dnk_nameg))
        chooseDeceased(form, context, desk);
}

// From here on the boxes are those of a new memorial.
void startAnew(法要外Form& form, const desk::ScreenContext& context) {
    QString whose = desk::householdLabel(context.dnk_no1, context.dnk_no2);
    if (form.givenDeceased)
        whose += u' ' + form.frm31_zoknameg.currentText();
    form.held.showNew(whose);
}

} // namespace

void beginExtra(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    fillServiceLists(database, form);
    fillLiving(database, form.施主, context.dnk_no1, "ORDER BY tbl_kazoku.tblkzk_nameg ASC;");
    const bool named = !context.kak_zokunameg.isEmpty();
    const auto entry = named ? readEntry(database, context) : std::nullopt;
    if (!context.dnk_handedOver) {
        if (const auto household = store::find(database, store::idxdnk_no, context.dnk_no1, context.dnk_no2))
            context.publishHousehold(desk::HouseholdBlock::of(*household));
    }
    if (entry) {
        form.givenDeceased = true;
        form.frm31_zoknameg.items = {entry->tblkak_zokunameg};
        form.entryHouseholds = {entry->tblkak_dnknameg};
        form.frm31_zoknameg.current = 0;
        showEntry(database, form, *entry, context, desk);
        startAnew(form, context);
        return;
    }
    context.clearDeceased();
    showHousehold(form, context);
    for (const auto& line : store::selectAll<store::tbl_kakocho>(
             database, "WHERE tbl_kakocho.tblkak_no = ? ORDER BY tbl_kakocho.tblkak_zokunameg ASC;", context.dnk_no1)) {
        form.frm31_zoknameg.items << line.tblkak_zokunameg;
        form.entryHouseholds << line.tblkak_dnknameg;
    }
    startAnew(form, context);
    if (named)
        desk.notify(registerEntryMissing, title);
}

std::optional<desk::AskedRecord> askedExtra(const 法要外Form& form, const desk::ScreenContext& context) {
    if (context.dnk_no1 == 0)
        return {};
    const bool sameHousehold = form.frm31_no.text == QString::number(context.dnk_no1);
    if (context.kak_zokunameg.isEmpty()) {
        if (sameHousehold && !form.givenDeceased)
            return {};
        return desk::Record::newRecord(desk::householdLabel(context.dnk_no1, context.dnk_no2));
    }
    const int line = form.frm31_zoknameg.current;
    if (sameHousehold && line >= 0 && form.frm31_zoknameg.currentText() == context.kak_zokunameg &&
        form.entryHouseholds.value(line) == context.dnk_nameg)
        return {};
    return desk::Record::newRecord(desk::householdLabel(context.dnk_no1, context.dnk_no2) + u' ' +
                                   context.kak_zokunameg);
}

void nameOpened(const 法要外Form& form, desk::ScreenContext& context) {
    if (!form.givenDeceased)
        context.clearDeceased();
}

void chooseDeceased(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const QString name = form.frm31_zoknameg.currentText();
    if (name.isEmpty())
        return;
    store::Database database;
    const auto entry = store::find(database, store::idxkak_kakochou, context.dnk_no1,
                                   form.entryHouseholds.value(form.frm31_zoknameg.current), name);
    if (entry) {
        showEntry(database, form, *entry, context, desk);
        form.frm31_mei_gymd.text = deathText(*entry);
        return;
    }
    // Neither this one nor the one before is chosen now.
    context.clearDeceased();
    form.frm31_zoknameg.current = -1;
    showDeceased(database, form, context, desk);
    desk.notify(registerEntryMissing, title);
}

void registerExtra(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    followList(form, context, desk);
    store::Database database;
    desk::SaveAttempt attempt = CheckMemorialInput(database, form, context, desk);
    attempt.check(!context.kak_zokunameg.isEmpty() && context.dnk_no1 > 0, form.frm31_zoknameg,
                  u"故人を選択して下さい"_s);
    attempt.required(form.frm31_hohyo_mei, u"法要名を入力して下さい"_s);
    if (form.予約.western.text.isEmpty() && form.実施.western.text.isEmpty())
        attempt.check(false, form.予約.year, u"法要予定日又は法要実施日を入力して下さい"_s);
    if (attempt.reported(desk, title))
        return;
    const auto entry = readEntry(database, context);
    if (!entry) {
        desk.notify(registerEntryMissing, title);
        return;
    }
    // What is written is what the boxes show.
    if (desk::DeceasedBlock::of(*entry) != static_cast<const desk::DeceasedBlock&>(context))
        showEntry(database, form, *entry, context, desk);
    const auto taken = [&] {
        return isTaken(database, context, values::readDate(form.予約.western.text).value_or(QDate())) ||
               isTaken(database, context, scheduledDate(form));
    };
    const QString takenAlready = u"指定された法要は既に登録されています。入力した内容をﾁｪｯｸしてください"_s;
    if (taken()) {
        desk.notify(takenAlready, title);
        return;
    }
    if (!desk.ask(u"入力された内容で法要を登録します。内容を確認して下さい。"_s, title))
        return;
    const store::tbl_hohyo row = newMemorial(form, context, desk.today());
    bool written = false;
    {
        store::Write write(database);
        // Another screen may have registered it while the question stood.
        if (!taken()) {
            store::Table(database, store::idxhoy_hohyo).insert(row);
            keepWords(database, form);
            write.commit();
            written = true;
        }
    }
    if (!written) {
        desk.notify(takenAlready, title);
        return;
    }
    form.registered.show(row);
    form.held.wrote(row);
    startAnew(form, context);
    form.frm31_ygymd.text = calendar::eraText(database, row.tblhoy_kaiki_yymd, desk);
    desk.notify(u"指定された法要は登録されました。"_s, title);
}

void removeExtra(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    followList(form, context, desk);
    desk::SaveAttempt attempt(context);
    store::Database database;
    calendar::checkDate(database, form.予約, calendar::法要予定日, context, desk);
    calendar::checkDate(database, form.実施, calendar::法要実施日, context, desk);
    if (attempt.reported(desk, title))
        return;
    auto shown = form.registered.orRead(database, context.dnk_no1, context.kak_zokunameg, scheduledDate(form));
    if (!removeMemorial(database, shown, title, desk))
        return;
    form.registered = {};
    form.held.removed();
    startAnew(form, context);
}

} // namespace memorials
