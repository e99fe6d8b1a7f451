#include "memorials/service_form.h"

#include "calendar/date_groups.h"
#include "calendar/eras.h"
#include "masters/master_rules.h"
#include "store/row_rules.h"
#include "store/table.h"
#include "values/dates.h"
#include "values/numbers.h"

using namespace Qt::StringLiterals;

namespace memorials {

namespace {

using masters::Category;

constexpr int lastHour = 24;
constexpr int lastMinute = 60;

bool isUpTo(const QString& text, int last) {
    const auto number = values::readInt16(text);
    return number && *number <= last;
}

} // namespace

void fillServiceLists(store::Database& database, ServiceForm& form) {
    masters::CMB設定(database, Category::続柄, form.frm31_続柄);
    masters::CMB設定(database, Category::場所, form.frm31_法要場所);
    calendar::CMB年号(database, form.予約);
    calendar::CMB年号(database, form.実施);
    for (int hour = 1; hour <= lastHour; ++hour)
        form.開始時.items << QString::number(hour);
    form.開始分.items = {u"00"_s, u"15"_s, u"30"_s, u"45"_s};
    form.frm31_am.chosen = true;
}

void fillLiving(store::Database& database, desk::List& list, std::int16_t household, const std::string& order) {
    store::Selection<store::tbl_kazoku> family(database, "WHERE tbl_kazoku.tblkzk_no1 = ? " + order, household);
    while (family.next()) {
        if (store::isLiving(family.row()))
            list.items << family.row().tblkzk_nameg;
    }
}

void showHousehold(ServiceForm& form, const desk::ScreenContext& context) {
    form.frm31_no.text = QString::number(context.dnk_no1);
    form.frm31_dankag.text = context.dnk_nameg;
    form.frm31_dankak.text = context.dnk_namek;
}

void showDeceased(store::Database& database, ServiceForm& form, const desk::ScreenContext& context, desk::Desk& desk) {
    form.frm31_zoknamek.text = context.kak_zokunamek;
    form.frm31_kaimyoug.text = context.kak_kaimyoug;
    form.frm31_kaimyouk.text = context.kak_kaimyouk;
    const bool known = context.kak_mei_ymd != values::zeroDate();
    form.frm31_mei_gymd.text = known ? calendar::eraText(database, context.kak_mei_ymd, desk) : QString();
    form.frm31_kyounen.text = QString::number(context.kak_kyounen);
    form.frm31_moshu.text = context.kak_kankeisha;
    form.frm31_mshzkgr.text = context.kak_zokugara;
    form.frm31_kaak_bikou.text = context.kak_bikou;
}

QString deathText(const store::tbl_kakocho& entry) {
    if (!entry.tblkak_mei_gyy || !entry.tblkak_mei_gmm || !entry.tblkak_mei_gdd)
        return {};
    return calendar::eraText(entry.tblkak_mei_gname, entry.tblkak_mei_gyy, entry.tblkak_mei_gmm, entry.tblkak_mei_gdd);
}

desk::SaveAttempt CheckMemorialInput(store::Database& database, ServiceForm& form, desk::ScreenContext& context,
                                     desk::Desk& desk) {
    desk::SaveAttempt attempt(context);
    calendar::checkDate(database, form.予約, calendar::法要予定日, context, desk);
    calendar::checkDate(database, form.実施, calendar::法要実施日, context, desk);

    const bool hourGood = form.開始時.text.isEmpty() || isUpTo(form.開始時.text, lastHour);
    attempt.check(hourGood, form.開始時, u"予定時間に正しい数字を入力して下さい"_s);
    if (form.開始分.text.isEmpty())
        form.開始分.text = u"00"_s;
    const bool minuteGood = isUpTo(form.開始分.text, lastMinute);
    attempt.check(minuteGood, form.開始分, u"予定時間分に正しい数字を入力して下さい"_s);

    // What is red already stays red.
    desk::paint(desk::Colour::black, form.frm31_法要場所, form.施主, form.frm31_続柄);
    if (!form.予約.western.text.isEmpty()) {
        if (hourGood)
            attempt.required(form.開始時, u"開始予定時間は必須です、時間を入力して下さい"_s);
        if (minuteGood)
            attempt.required(form.開始分, u"開始予定時間は必須です、分を入力して下さい"_s);
        attempt.required(form.frm31_法要場所, u"法要場所は必須です、法要場所を選択又は入力して下さい"_s);
    }
    if (!form.実施.western.text.isEmpty()) {
        attempt.check(!form.施主.currentText().isEmpty(), form.施主,
                      u"施主は必須です、関係者から選択又は入力して下さい"_s);
        attempt.required(form.frm31_続柄, u"施主の続柄は必須です、続柄を選択又は入力して下さい"_s);
    }

    if (form.frm31_ofuse.text.isEmpty())
        form.frm31_ofuse.text = u"0"_s;
    const auto offering = values::readMoney(form.frm31_ofuse.text);
    attempt.check(offering.has_value(), form.frm31_ofuse, u"御布施の金額に正しく入力して下さい \""_s);
    if (offering)
        form.frm31_ofuse.text = values::moneyText(*offering);
    return attempt;
}

void writeService(const ServiceForm& form, store::tbl_hohyo& row) {
    if (const auto reserved = values::readDate(form.予約.western.text)) {
        row.tblhoy_kaiki_rymd = *reserved;
        row.tblhoy_kaiki_rs = store::codes::yes;
        row.tblhoy_kaiki_ampm = form.frm31_am.chosen ? store::codes::morning : store::codes::afternoon;
        row.tblhoy_kaiki_hour = values::readInt16(form.開始時.text);
        row.tblhoy_kaiki_mint = values::readInt16(form.開始分.text);
    }
    if (const auto held = values::readDate(form.実施.western.text)) {
        row.tblhoy_kaiki_jymd = *held;
        row.tblhoy_kaiki_s = store::codes::yes;
    }
    row.tblhoy_ofuse = values::readMoney(form.frm31_ofuse.text);
    row.tblhoy_kaiki_basho = form.frm31_法要場所.text;
    row.tblhoy_kaiki_seshug = form.施主.currentText();
    row.tblhoy_zokugara = form.frm31_続柄.text;
    row.tblhoy_bikou = form.frm31_hoybikou.text;
}

void keepWords(store::Database& database, const ServiceForm& form) {
    masters::MST設定(database, Category::続柄, form.frm31_続柄.text);
    masters::MST設定(database, Category::場所, form.frm31_法要場所.text);
}

void holdAsBooked(ServiceForm& form) {
    form.実施.copyFrom(form.予約);
    form.実施.western.text = form.予約.western.text;
}

bool removeMemorial(store::Database& database, desk::Held<store::tbl_hohyo>& memorial, const QString& title,
                    desk::Desk& desk) {
    if (!desk.ask(u"指定された法要を削除します。内容を確認して下さい。"_s, title, desk::Preset::no) ||
        !desk::remove(memorial, database, {title, memorialMissing}, desk))
        return false;
    desk.notify(u"削除処理を終了しました。"_s, title);
    return true;
}

std::optional<store::tbl_kakocho> readEntry(store::Database& database, const desk::ScreenContext& context) {
    return store::find(database, store::idxkak_kakochou, context.dnk_no1, context.dnk_nameg, context.kak_zokunameg);
}

} // namespace memorials
