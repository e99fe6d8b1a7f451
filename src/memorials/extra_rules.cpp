#include "memorials/extra_rules.h"

#include "calendar/date_groups.h"
#include "calendar/eras.h"
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
    if (row.tblhoy_kaiki_rs == 1) {
        // Booked in person: no notice is due.
        row.tblhoy_tsuchi_s = 1;
        row.tblhoy_tsuchi_ymd = row.tblhoy_kaiki_rymd;
    }
    row.tblhoy_kanaidx = store::kanaIndex(context.dnk_namek);
    row.tblhoy_add_ymd = today;
    return row;
}

// The list may have been moved without a click.
void followList(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (form.frm31_zoknameg.currentText() != context.kak_zokunameg)
        chooseDeceased(form, context, desk);
}

} // namespace

void openExtra(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    fillServiceLists(database, form);
    fillLiving(database, form.施主, context.dnk_no1, "ORDER BY tbl_kazoku.tblkzk_nameg ASC;");
    showHousehold(form, context);
    if (!context.kak_zokunameg.isEmpty()) {
        form.frm31_zoknameg.items = {context.kak_zokunameg};
        form.frm31_zoknameg.current = 0;
        showDeceased(database, form, context, desk);
        return;
    }
    store::Selection<store::tbl_kakocho> deceased(
        database, "WHERE tbl_kakocho.tblkak_no = ? ORDER BY tbl_kakocho.tblkak_zokunameg ASC;", context.dnk_no1);
    while (deceased.next())
        form.frm31_zoknameg.items << deceased.row().tblkak_zokunameg;
}

void chooseDeceased(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const QString name = form.frm31_zoknameg.currentText();
    if (name.isEmpty())
        return;
    store::Database database;
    const auto entry = store::find(database, store::idxkak_kakochou, context.dnk_no1, context.dnk_nameg, name);
    if (entry) {
        context.publishDeceased(*entry);
        showDeceased(database, form, context, desk);
        form.frm31_mei_gymd.text = deathText(*entry);
        return;
    }
    // Neither this one nor the one before is chosen now.
    static_cast<desk::DeceasedBlock&>(context) = {};
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
    if (isTaken(database, context, values::readDate(form.予約.western.text).value_or(QDate())) ||
        isTaken(database, context, scheduledDate(form))) {
        desk.notify(u"指定された法要は既に登録されています。入力した内容をﾁｪｯｸしてください"_s, title);
        return;
    }
    if (!desk.ask(u"入力された内容で法要を登録します。内容を確認して下さい。"_s, title))
        return;
    const store::tbl_hohyo row = newMemorial(form, context, desk.today());
    store::Table(database, store::idxhoy_hohyo).insert(row);
    form.registered = MemorialKey{row.tblhoy_no, row.tblhoy_zokunameg, row.tblhoy_kaiki_yymd};
    form.frm31_ygymd.text = calendar::eraText(database, row.tblhoy_kaiki_yymd, desk);
    desk.notify(u"指定された法要は登録されました。"_s, title);
    keepWords(database, form);
}

void deleteExtra(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (!form.registered) {
        followList(form, context, desk);
        desk::SaveAttempt attempt(context);
        store::Database database;
        calendar::checkDate(database, form.予約, calendar::法要予定日, context, desk);
        calendar::checkDate(database, form.実施, calendar::法要実施日, context, desk);
        if (attempt.reported(desk, title))
            return;
    }
    const MemorialKey shown{context.dnk_no1, context.kak_zokunameg, scheduledDate(form)};
    if (deleteMemorial(form.registered.value_or(shown), title, desk))
        form.registered.reset();
}

} // namespace memorials
