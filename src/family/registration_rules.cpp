#include "family/registration_rules.h"

#include "calendar/date_groups.h"
#include "calendar/eras.h"
#include "desk/save_attempt.h"
#include "masters/master_rules.h"
#include "store/row_rules.h"
#include "store/selections.h"
#include "store/table.h"

using namespace Qt::StringLiterals;

namespace family {

namespace {

const QString title = u"家族登録"_s;
const QString memberMissing = u"指定された家族を読めませんません。DBの整合性を確認して下さい"_s;

void fillMemberLists(store::Database& database, 家族登Form& form, const desk::ScreenContext& context) {
    form.frm12_meibo.clear();
    form.frm12_mzkgr.clear();
    for (const auto& member : store::familyOf(database, context.dnk_no1)) {
        if (!store::isLiving(member))
            continue;
        form.frm12_meibo.items << member.tblkzk_nameg;
        form.frm12_mzkgr.items << member.tblkzk_zokugara;
    }
}

void show(store::Database& database, 家族登Form& form, const QString& name, const desk::ScreenContext& context,
          desk::Desk& desk) {
    const auto found = store::find(database, store::idxkzk_kazoku, context.dnk_no1, context.dnk_nameg, name);
    if (!found) {
        desk.notify(u"家族名が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s, title);
        return;
    }
    form.frm12_no.text = QString::number(found->tblkzk_no1);
    form.frm12_dankag.text = found->tblkzk_dnknameg;
    form.frm12_dankak.text = found->tblkzk_dnknamek;
    form.frm12_toshunameg.text = context.dnk_toshug;
    form.frm12_nameg.text = found->tblkzk_nameg;
    form.frm12_namek.text = found->tblkzk_namek;
    form.frm12_namek.preset = false;
    calendar::showDate(form.生年,
                       {found->tblkzk_sei_gname, found->tblkzk_sei_gyy, found->tblkzk_sei_gmm, found->tblkzk_sei_gdd},
                       found->tblkzk_sei_ymd);
    form.frm12_続柄.text = found->tblkzk_zokugara;
    form.frm12_dohkyo.chosen = found->tblkzk_dohkyokbn == store::codes::inHouse;
    form.frm12_bekkyo.chosen = !form.frm12_dohkyo.chosen;
    form.frm12_yubinno.text = found->tblkzk_yubin;
    form.frm12_jyusho1.text = found->tblkzk_jusho1;
    form.frm12_jyusho2.text = found->tblkzk_jusho2;
    form.frm12_tel.text = found->tblkzk_tel;
    form.frm12_fax.text = found->tblkzk_fax;
    form.frm12_地区.text = found->tblkzk_chiku;
    form.frm12_bikou.text = found->tblkzk_bikou;
    form.held.show(*found);
}

// True when the boxes can be stored; the birth date is then the Western box's, absent when none was given.
bool check(store::Database& database, 家族登Form& form, desk::ScreenContext& context, desk::Desk& desk, QDate& birth) {
    if (context.dnk_no1 == 0) {
        desk.notify(u"檀家を照会してから登録して下さい"_s, title);
        return false;
    }
    desk::SaveAttempt attempt(context);
    attempt.required(form.frm12_nameg, u"家族名は必須項目です、入力して下さい"_s);
    attempt.required(form.frm12_namek, u"家族名カナは必須項目です、入力して下さい"_s);
    birth = calendar::checkDate(database, form.生年, calendar::生年月日, context, desk);
    attempt.required(form.frm12_続柄, u"続柄は必須項目です、選択又は入力をして下さい"_s);
    return !attempt.reported(desk, title);
}

// What 登録 and 更新 write alike.
void write(store::tbl_kazoku& row, const 家族登Form& form, QDate birth, QDate today) {
    const calendar::EraFields era = calendar::eraFields(form.生年);
    row.tblkzk_namek = form.frm12_namek.text;
    row.tblkzk_sei_gname = era.gname;
    row.tblkzk_sei_gyy = era.gyy;
    row.tblkzk_sei_gmm = era.gmm;
    row.tblkzk_sei_gdd = era.gdd;
    row.tblkzk_sei_ymd = birth;
    row.tblkzk_zokugara = form.frm12_続柄.text;
    row.tblkzk_dohkyokbn = form.frm12_dohkyo.chosen ? store::codes::inHouse : store::codes::elsewhere;
    row.tblkzk_seishikbn = store::codes::living;
    row.tblkzk_yubin = form.frm12_yubinno.text;
    row.tblkzk_jusho1 = form.frm12_jyusho1.text;
    row.tblkzk_jusho2 = form.frm12_jyusho2.text;
    row.tblkzk_tel = form.frm12_tel.text;
    row.tblkzk_fax = form.frm12_fax.text;
    row.tblkzk_chiku = form.frm12_地区.text;
    row.tblkzk_bikou = form.frm12_bikou.text;
    row.tblkzk_kanaidx = store::kanaIndex(form.frm12_dankak.text);
    row.tblkzk_add_ymd = today;
}

void addToMasters(store::Database& database, const 家族登Form& form) {
    masters::MST設定(database, masters::Category::続柄, form.frm12_続柄.text);
    masters::MST設定(database, masters::Category::地区, form.frm12_地区.text);
}

} // namespace

void beginFamily(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    form.frm12_dohkyo.chosen = true;
    const bool asked = !context.kzk_nameg.isEmpty();
    if (context.dnk_no1 != 0) {
        if (!context.dnk_handedOver) {
            if (const auto row = store::find(database, store::idxdnk_no, context.dnk_no1, context.dnk_no2)) {
                // A member is found by the household's name as his row bears it.
                const QString nameg = context.dnk_nameg;
                const QString namek = context.dnk_namek;
                context.publishHousehold(desk::HouseholdBlock::of(*row));
                if (asked) {
                    context.dnk_nameg = nameg;
                    context.dnk_namek = namek;
                }
            }
        }
        form.frm12_no.text = QString::number(context.dnk_no1);
        form.frm12_dankag.text = context.dnk_nameg;
        form.frm12_dankak.text = context.dnk_namek;
        form.frm12_toshunameg.text = context.dnk_toshug;
        form.frm12_nameg.text = context.dnk_nameg;
        form.frm12_namek.text = context.dnk_namek;
        form.frm12_namek.preset = true;
        form.frm12_yubinno.text = context.dnk_yubin;
        form.frm12_jyusho1.text = context.dnk_jyusho1;
        form.frm12_jyusho2.text = context.dnk_jyusho2;
        form.frm12_tel.text = context.dnk_tel;
        form.frm12_fax.text = context.dnk_fax;
        form.frm12_地区.text = context.dnk_chiku;
        fillMemberLists(database, form, context);
    }
    masters::CMB設定(database, masters::Category::続柄, form.frm12_続柄);
    masters::CMB設定(database, masters::Category::地区, form.frm12_地区);
    calendar::CMB年号(database, form.生年);
    form.held.showNew(desk::householdLabel(context.dnk_no1, context.dnk_no2));
    if (!asked)
        return;
    form.frm12_meibo.choose(context.kzk_nameg);
    form.frm12_mzkgr.current = form.frm12_meibo.current;
    show(database, form, context.kzk_nameg, context, desk);
}

std::optional<desk::AskedRecord> askedMember(const 家族登Form& form, const desk::ScreenContext& context) {
    return desk::askedPerson(context, context.kzk_nameg, form.frm12_no.text);
}

void nameShown(const 家族登Form& form, desk::ScreenContext& context) {
    context.kzk_nameg.clear();
    if (form.held.isNew())
        return;
    context.publishHousehold(form.held->tblkzk_no1);
    context.dnk_nameg = form.held->tblkzk_dnknameg;
    context.dnk_namek = form.held->tblkzk_dnknamek;
    context.kzk_nameg = form.held->tblkzk_nameg;
}

void loadMember(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    show(database, form, form.frm12_meibo.currentText(), context, desk);
}

void registerMember(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    QDate birth;
    if (!check(database, form, context, desk, birth))
        return;
    if (store::find(database, store::idxkzk_kazoku, context.dnk_no1, context.dnk_nameg, form.frm12_nameg.text)) {
        context.chk_errflg = u"1"_s;
        form.frm12_nameg.keyboard = true;
        desk.notify(u"既に登録されています。家族名をﾁｪｯｸしてください"_s, title);
        return;
    }
    if (!desk.ask(u"入力された内容で家族の登録をします。内容を確認して下さい。"_s, title))
        return;
    store::tbl_kazoku row;
    row.tblkzk_no1 = context.dnk_no1;
    row.tblkzk_no2 = std::int16_t{0};
    row.tblkzk_dnknameg = form.frm12_dankag.text;
    row.tblkzk_dnknamek = form.frm12_dankak.text;
    row.tblkzk_nameg = form.frm12_nameg.text;
    write(row, form, birth, desk.today());
    {
        store::Write write(database);
        store::Table(database, store::idxkzk_kazoku).insert(row);
        addToMasters(database, form);
        write.commit();
    }
    form.held.wrote(row);
    desk.notify(u"入力された内容で家族は登録されました。"_s, title);
    fillMemberLists(database, form, context);
}

void updateMember(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    auto member = form.held.orRead(database, context.dnk_no1, context.dnk_nameg, form.frm12_nameg.text);
    QDate birth;
    if (!check(database, form, context, desk, birth) ||
        !desk.ask(u"入力された内容で家族を変更します。内容を確認して下さい。"_s, title))
        return;
    if (!desk::change(
            member, database, {title, memberMissing}, desk,
            [&](store::tbl_kazoku& row) { write(row, form, birth, desk.today()); },
            [&] { addToMasters(database, form); }))
        return;
    form.held = member;
    desk.notify(u"入力された内容で家族は更新されました。"_s, title);
    fillMemberLists(database, form, context);
}

void removeMember(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    auto member = form.held.orRead(database, context.dnk_no1, context.dnk_nameg, form.frm12_nameg.text);
    if (!desk.ask(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, title, desk::Preset::no) ||
        !desk::remove(member, database, {title, memberMissing}, desk))
        return;
    form.held = member;
    desk.notify(u"指定された家族は削除されました。"_s, title);
    fillMemberLists(database, form, context);
    context.kzk_nameg.clear();
}

} // namespace family
