#include "memorials/detail_rules.h"

#include "calendar/date_groups.h"
#include "calendar/eras.h"
#include "store/row_rules.h"
#include "store/table.h"
#include "values/dates.h"
#include "values/numbers.h"

using namespace Qt::StringLiterals;

namespace memorials {

namespace {

const QString title = u"法要明細"_s;

void showMemorial(store::Database& database, 法要明Form& form, const store::tbl_hohyo& row, desk::Desk& desk) {
    form.held.show(row);
    form.frm31_hohyo_mei.text = row.tblhoy_kaiki_mei;
    form.frm31_ygymd.text = calendar::eraText(database, row.tblhoy_kaiki_yymd, desk);
    if (store::isReserved(row)) {
        calendar::showDate(database, form.予約, row.tblhoy_kaiki_rymd, desk);
        form.frm31_am.chosen = row.tblhoy_kaiki_ampm == store::codes::morning;
        form.frm31_pm.chosen = !form.frm31_am.chosen;
        form.開始時.text = values::shownNumber(row.tblhoy_kaiki_hour);
        form.開始分.text = values::shownNumber(row.tblhoy_kaiki_mint);
    }
    form.frm31_法要場所.text = row.tblhoy_kaiki_basho;
    // One who has died or moved away since stays the 施主 of this service.
    if (!row.tblhoy_kaiki_seshug.isEmpty() && !form.施主.items.contains(row.tblhoy_kaiki_seshug))
        form.施主.items << row.tblhoy_kaiki_seshug;
    form.施主.choose(row.tblhoy_kaiki_seshug);
    form.frm31_続柄.text = row.tblhoy_zokugara;
    form.frm31_ofuse.text = values::moneyText(row.tblhoy_ofuse.value_or(0));
    form.frm31_hoybikou.text = row.tblhoy_bikou;
    if (store::isHeld(row))
        calendar::showDate(database, form.実施, row.tblhoy_kaiki_jymd, desk);
}

} // namespace

void beginDetail(法要明Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    form.held.showNew(desk::householdLabel(context.dnk_no1, context.dnk_no2) + u' ' + context.kak_zokunameg);
    fillServiceLists(database, form);
    fillLiving(database, form.施主, context.dnk_no1,
               "ORDER BY tbl_kazoku.tblkzk_sei_ymd ASC, tbl_kazoku.tblkzk_nameg ASC;");
    if (!context.kak_handedOver) {
        if (const auto entry = readEntry(database, context))
            context.publishDeceased(*entry);
        else
            desk.notify(registerEntryMissing, title);
    }
    showHousehold(form, context);
    form.frm31_zoknameg.text = context.kak_zokunameg;
    showDeceased(database, form, context, desk);
    const auto row =
        store::find(database, store::idxhoy_hohyo, context.dnk_no1, context.kak_zokunameg, context.hoy_kaiki_yymd);
    if (row)
        showMemorial(database, form, *row, desk);
    else
        desk.notify(u"照会者の法要は登録されていません"_s, title);
}

std::optional<desk::AskedRecord> askedMemorial(const desk::ScreenContext& context) {
    if (context.dnk_no1 == 0)
        return {};
    return desk::AskedRecord{
        desk::keyText(context.dnk_no1, context.kak_zokunameg, context.hoy_kaiki_yymd),
        u"%1 %2 %3"_s.arg(context.dnk_no1).arg(context.kak_zokunameg, values::dateText(context.hoy_kaiki_yymd))};
}

void publishShown(const 法要明Form& form, desk::ScreenContext& context) {
    context.hoy_kaiki_yymd = form.held ? form.held->tblhoy_kaiki_yymd : values::zeroDate();
}

void bookOnScheduledDay(法要明Form& form, desk::ScreenContext&, desk::Desk& desk) {
    if (form.held.isNew())
        return;
    store::Database database;
    calendar::showDate(database, form.予約, form.held->tblhoy_kaiki_yymd, desk);
}

void updateDetail(法要明Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    const desk::SaveAttempt attempt = CheckMemorialInput(database, form, context, desk);
    if (attempt.reported(desk, title) ||
        !desk.ask(u"入力された内容で法要を変更します。内容を確認して下さい。"_s, title))
        return;
    if (desk::change(
            form.held, database, {title, memorialMissing}, desk,
            [&form](store::tbl_hohyo& row) { writeService(form, row); }, [&] { keepWords(database, form); }))
        desk.notify(u"入力された内容で法要は更新されました。"_s, title);
}

void removeDetail(法要明Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    if (removeMemorial(database, form.held, title, desk))
        publishShown(form, context);
}

} // namespace memorials
