#include "graves/grave_record.h"

#include "calendar/date_groups.h"
#include "calendar/eras.h"
#include "calendar/spoken_date.h"
#include "desk/deletion.h"
#include "store/codes.h"
#include "store/table.h"
#include "values/dates.h"
#include "values/numbers.h"

using namespace Qt::StringLiterals;

namespace graves {

namespace {

void checkFee(desk::Text& box, const QString& message, desk::SaveAttempt& attempt) {
    const auto fee = values::readMoney(box.text);
    attempt.check(fee.has_value(), box, message);
    if (fee)
        box.text = values::moneyText(*fee);
}

desk::Refusal refusal(const QString& title) {
    return {title, u"指定されたお墓番号を読めませんません。DBの整合性を確認して下さい"_s};
}

} // namespace

bool GraveFields::namesGraveHeld() const {
    return !held.isNew() && values::readInt16(frm13_haka_no.text) == held->tblhak_no;
}

void fillDateLists(store::Database& database, GraveFields& fields) {
    for (desk::DateGroup* group : {&fields.開始, &fields.受領, &fields.管受, &fields.次回})
        calendar::CMB年号(database, *group);
}

std::optional<store::tbl_ohaka> findGrave(store::Database& database, const desk::Text& number) {
    const auto no = values::readInt16(number.text);
    return no ? store::find(database, store::idxhak_no, *no) : std::nullopt;
}

void showGrave(store::Database& database, const store::tbl_ohaka& row, GraveFields& fields, desk::Desk& desk) {
    fields.frm13_haka_no.text = QString::number(row.tblhak_no);
    fields.held.show(row);
    fields.frm13_banchi1.text = row.tblhak_banchi1;
    fields.frm13_banchi2.text = row.tblhak_banchi2;
    fields.frm13_bohyo.text.clear();
    if (row.tblhak_bohyo_kbn != store::codes::vacantGrave) {
        fields.frm13_haka2.chosen = row.tblhak_bohyo_kbn == store::codes::familyGrave;
        fields.frm13_haka1.chosen = !fields.frm13_haka2.chosen;
        fields.frm13_bohyo.text = row.tblhak_bohyo_mei;
    }
    fields.墓地使用料.text = values::shownMoney(row.tblhak_shiyo_ryokin);
    fields.墓地管理費.text = values::shownMoney(row.tblhak_kanri_ryokin);
    fields.frm13_biko.text = row.tblhak_biko;
    calendar::showDate(database, fields.開始, row.tblhak_shiyo_stymd, desk);
    calendar::showDate(database, fields.受領, row.tblhak_shiyo_jrymd, desk);
    calendar::showDate(database, fields.管受, row.tblhak_kanri_jrymd, desk);
    calendar::showDate(database, fields.次回, row.tblhak_kanri_nxymd, desk);
}

GraveDates checkDatesAndFees(store::Database& database, GraveFields& fields, desk::SaveAttempt& attempt,
                             desk::ScreenContext& context, desk::Desk& desk) {
    const auto checkDate = [&](desk::DateGroup& group, calendar::DateField field) {
        return calendar::checkDate(database, group, field, context, desk);
    };
    GraveDates dates;
    dates.start = checkDate(fields.開始, calendar::使用開始日);
    checkFee(fields.墓地使用料, u"墓地使用料に正しく入力して下さい"_s, attempt);
    dates.feeReceived = checkDate(fields.受領, calendar::使用料受領日);
    checkFee(fields.墓地管理費, u"墓地管理費に正しく入力して下さい"_s, attempt);
    dates.upkeepReceived = checkDate(fields.管受, calendar::管理費受領日);
    dates.upkeepNext = checkDate(fields.次回, calendar::管理費次回請求日);
    return dates;
}

void takeFields(const GraveFields& fields, const GraveDates& dates, store::tbl_ohaka& row) {
    const auto take = [](QDate date, QDate& field) {
        if (date.isValid())
            field = date;
    };
    row.tblhak_banchi1 = fields.frm13_banchi1.text;
    row.tblhak_banchi2 = fields.frm13_banchi2.text;
    row.tblhak_bohyo_mei = fields.frm13_bohyo.text;
    take(dates.start, row.tblhak_shiyo_stymd);
    row.tblhak_shiyo_ryokin = values::readMoney(fields.墓地使用料.text);
    take(dates.feeReceived, row.tblhak_shiyo_jrymd);
    row.tblhak_kanri_ryokin = values::readMoney(fields.墓地管理費.text);
    take(dates.upkeepReceived, row.tblhak_kanri_jrymd);
    take(dates.upkeepNext, row.tblhak_kanri_nxymd);
    row.tblhak_haiki_kbn = store::codes::no;
    row.tblhak_biko = fields.frm13_biko.text;
}

std::vector<store::tbl_ohaka> gravesAt(store::Database& database, const GraveFields& fields) {
    return store::selectAll<store::tbl_ohaka>(database, "WHERE tblhak_banchi1 = ? AND tblhak_banchi2 = ?",
                                              fields.frm13_banchi1.text, fields.frm13_banchi2.text);
}

bool editGrave(GraveFields& fields, const QString& title, desk::Desk& desk,
               const std::function<void(store::tbl_ohaka&)>& change) {
    store::Database database;
    return desk::change(fields.held, database, refusal(title), desk, change);
}

void removeGrave(GraveFields& fields, const QString& question, const QString& title, desk::ScreenContext& context,
                 desk::Desk& desk) {
    if (!fields.namesGraveHeld()) {
        sayNumberChanged(title, desk);
        return;
    }
    if (!desk.ask(question, title, desk::Preset::no))
        return;
    store::Database database;
    desk::Deletion deletion(desk, title, u"削除"_s);
    if (!desk::remove(fields.held, database, refusal(title), deletion))
        return;
    desk.notify(u"指定されたお墓は削除されました。"_s, title);
    context.forgetGrave(fields.held->tblhak_no);
    deletion.offerUndo(fields.held);
}

std::optional<desk::AskedRecord> askedGrave(const desk::ScreenContext& context) {
    if (context.hak_no == 0)
        return {};
    return desk::AskedRecord{desk::keyText(context.hak_no), QString::number(context.hak_no)};
}

void nameShown(const GraveFields& fields, desk::ScreenContext& context) {
    context.hak_no = fields.held ? fields.held->tblhak_no : std::int16_t{0};
}

void disposeGrave(GraveFields& fields, const QString& title, desk::Desk& desk) {
    if (!fields.namesGraveHeld()) {
        sayNumberChanged(title, desk);
        return;
    }
    store::Database database;
    desk::Deletion deletion(desk, title, u"廃棄"_s);
    const bool written = desk::change(fields.held, database, refusal(title), deletion, [&](store::tbl_ohaka& row) {
        row.tblhak_dnk_no = store::codes::noHousehold;
        row.tblhak_haiki_kbn = store::codes::yes;
        row.tblhak_haiki_ymd = desk.today();
    });
    if (!written)
        return;
    desk.notify(u"指定されたお墓は廃棄処分されました。"_s, title);
    deletion.offerUndo(fields.held);
}

void sayNumberChanged(const QString& title, desk::Desk& desk) {
    desk.notify(u"登録NOが変更されています。照会からやり直して下さい"_s, title);
}

void startToday(GraveFields& fields, desk::Desk& desk) {
    store::Database database;
    calendar::showDate(database, fields.開始, desk.today(), desk);
}

void receiveToday(GraveFields& fields, desk::Desk& desk) {
    store::Database database;
    calendar::showDate(database, fields.管受, desk.today(), desk);
}

void billNextYear(GraveFields& fields, desk::Desk& desk) {
    store::Database database;
    const auto& from = fields.次回.isEmpty() ? fields.管受 : fields.次回;
    const auto date = calendar::typedDate(database, from, desk.today());
    if (!date)
        desk.inform(u"次回請求日か管理費の受領日を正しく入れてから、押して下さい"_s);
    else if (date->year() >= values::lastYear)
        desk.inform(u"次回請求日をこれより先には進められません"_s);
    else
        calendar::showDate(database, fields.次回, date->addYears(1), desk);
}

} // namespace graves
