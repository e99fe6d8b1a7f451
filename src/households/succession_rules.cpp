#include "households/succession_rules.h"

#include "households/registration_rules.h"
#include "masters/master_rules.h"
#include "store/table.h"
#include "values/numbers.h"

using namespace Qt::StringLiterals;

namespace households {

namespace {

const QString title = u"代替り処理"_s;
const QString notAMember = u"家族名が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s;
const QString noHousehold = u"指定された檀家番号を読めません。DBの整合性を確認して下さい"_s;

// An emptied box leaves what is stored.
void writeIfFilled(QString& field, const QString& text) {
    if (!text.isEmpty())
        field = text;
}

bool hasHousehold(desk::ScreenContext& context, desk::Desk& desk) {
    if (!context.dnk_yubin.isEmpty())
        return true;
    {
        store::Database database;
        store::Table households(database, store::idxdnk_no);
        if (households.seek(store::Seek::equal, context.dnk_no1, context.dnk_no2)) {
            context.takeNames(households.row());
            return true;
        }
    }
    desk.notify(noHousehold, title);
    return false;
}

void showHousehold(代替当Form& form, const desk::ScreenContext& context) {
    form.frm01_no.text = QString::number(context.dnk_no1);
    form.frm01_eno.text = QString::number(context.dnk_no2);
    form.frm01_dankag.text = context.dnk_nameg;
    form.frm01_dankak.text = context.dnk_namek;
    form.frm01_dnkkbn1.chosen = context.dnk_kbn == categoryText(true);
    form.frm01_dnkkbn2.chosen = !form.frm01_dnkkbn1.chosen;
    form.frm01_yubinno.text = context.dnk_yubin;
    form.frm01_jyusho1.text = context.dnk_jyusho1;
    form.frm01_jyusho2.text = context.dnk_jyusho2;
    form.frm01_tel.text = context.dnk_tel;
    form.frm01_fax.text = context.dnk_fax;
    form.frm01_地区.text = context.dnk_chiku;
    form.frm01_biko.text = context.dnk_bikou;
}

void listCandidates(store::Database& database, 代替当Form& form, std::int16_t household) {
    form.frm01_toshug.clear();
    form.frm01_tsh_zkgr.clear();
    store::Table family(database, store::idxkzk_no);
    for (family.seek(store::Seek::equal, household); !family.eof() && family.row().tblkzk_no1 == household;
         family.moveNext()) {
        if (family.row().tblkzk_seishikbn != u"0"_s)
            continue;
        form.frm01_toshug.items.append(family.row().tblkzk_nameg);
        form.frm01_tsh_zkgr.items.append(family.row().tblkzk_zokugara);
    }
}

bool checked(代替当Form& form, desk::Desk& desk) {
    const auto field = [](desk::Text& box) { return RequiredField{box, !box.text.isEmpty()}; };
    if (ValidateHousehold({field(form.frm01_dankag),
                           field(form.frm01_dankak),
                           field(form.frm01_yubinno),
                           field(form.frm01_jyusho1),
                           field(form.frm01_tel),
                           {form.frm01_toshug, !form.frm01_toshug.currentText().isEmpty()},
                           field(form.frm01_toshuk)}))
        return true;
    desk.notify(householdInvalid, title);
    return false;
}

bool writeHousehold(const 代替当Form& form, const desk::ScreenContext& context) {
    store::Database database;
    store::Table households(database, store::idxdnk_no);
    if (!households.seek(store::Seek::equal, context.dnk_no1, context.dnk_no2))
        return false;
    store::tbl_danka row = households.row();
    row.tbldnk_nameg = form.frm01_dankag.text;
    row.tbldnk_namek = form.frm01_dankak.text;
    row.tbldnk_dnkkbn = categoryText(form.frm01_dnkkbn1.chosen);
    row.tbldnk_yubin = form.frm01_yubinno.text;
    row.tbldnk_jyusho1 = form.frm01_jyusho1.text;
    row.tbldnk_tel = form.frm01_tel.text;
    row.tbldnk_kanaidx = store::kanaIndex(form.frm01_dankak.text);
    row.tbldnk_toshug = form.frm01_toshug.currentText();
    row.tbldnk_toshuk = form.frm01_toshuk.text;
    writeIfFilled(row.tbldnk_jyusho2, form.frm01_jyusho2.text);
    writeIfFilled(row.tbldnk_fax, form.frm01_fax.text);
    writeIfFilled(row.tbldnk_chiku, form.frm01_地区.text);
    writeIfFilled(row.tbldnk_bikou, form.frm01_biko.text);
    households.edit(row);
    return true;
}

// The member's row is found by the household's name as the context bears it: the copies in family rows keep the name
// that they were written with.
bool writeNewHead(const 代替当Form& form, const desk::ScreenContext& context, QDate today) {
    store::Database database;
    store::Table family(database, store::idxkzk_kazoku);
    if (!family.seek(store::Seek::equal, context.dnk_no1, context.dnk_nameg, form.frm01_toshug.currentText()))
        return false;
    store::tbl_kazoku row = family.row();
    row.tblkzk_zokugara = u"本人"_s;
    row.tblkzk_dohkyokbn = u"0"_s;
    row.tblkzk_seishikbn = u"0"_s;
    row.tblkzk_yubin = form.frm01_yubinno.text;
    row.tblkzk_jusho1 = form.frm01_jyusho1.text;
    row.tblkzk_tel = form.frm01_tel.text;
    writeIfFilled(row.tblkzk_jusho2, form.frm01_jyusho2.text);
    writeIfFilled(row.tblkzk_fax, form.frm01_fax.text);
    writeIfFilled(row.tblkzk_chiku, form.frm01_地区.text);
    writeIfFilled(row.tblkzk_bikou, form.frm01_biko.text);
    row.tblkzk_kanaidx = store::kanaIndex(form.frm01_dankak.text);
    row.tblkzk_add_ymd = today;
    family.edit(row);
    return true;
}

void publish(const 代替当Form& form, desk::ScreenContext& context) {
    desk::HouseholdBlock household = static_cast<const desk::HouseholdBlock&>(context);
    household.dnk_nameg = form.frm01_dankag.text;
    household.dnk_namek = form.frm01_dankak.text;
    household.dnk_kbn = categoryText(form.frm01_dnkkbn1.chosen);
    household.dnk_toshug = form.frm01_toshug.currentText();
    household.dnk_toshuk = form.frm01_toshuk.text;
    household.dnk_yubin = form.frm01_yubinno.text;
    household.dnk_jyusho1 = form.frm01_jyusho1.text;
    household.dnk_jyusho2 = form.frm01_jyusho2.text;
    household.dnk_tel = form.frm01_tel.text;
    household.dnk_fax = form.frm01_fax.text;
    household.dnk_chiku = form.frm01_地区.text;
    household.dnk_bikou = form.frm01_biko.text;
    context.publishHousehold(household);
}

} // namespace

void LoadSuccession(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (context.dnk_no1 != 0 && !hasHousehold(context, desk))
        return;
    showHousehold(form, context);
    store::Database database;
    masters::CMB設定(database, masters::Category::地区, form.frm01_地区);
    if (context.dnk_no1 != 0)
        listCandidates(database, form, context.dnk_no1);
}

void PickNewHead(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    std::optional<store::tbl_kazoku> member;
    {
        store::Database database;
        store::Table family(database, store::idxkzk_kazoku);
        if (family.seek(store::Seek::equal, context.dnk_no1, context.dnk_nameg, form.frm01_toshug.currentText()))
            member = family.row();
    }
    if (!member) {
        desk.notify(notAMember, title);
        return;
    }
    form.frm01_no.text = QString::number(member->tblkzk_no1);
    form.frm01_eno.text = u"0"_s;
    form.frm01_dankag.text = member->tblkzk_dnknameg;
    form.frm01_dankak.text = member->tblkzk_dnknamek;
    form.frm01_toshuk.text = member->tblkzk_namek;
    form.frm01_yubinno.text = member->tblkzk_yubin;
    form.frm01_jyusho1.text = member->tblkzk_jusho1;
    form.frm01_jyusho2.text = member->tblkzk_jusho2;
    form.frm01_tel.text = member->tblkzk_tel;
    form.frm01_fax.text = member->tblkzk_fax;
    form.frm01_地区.text = member->tblkzk_chiku;
    form.frm01_biko.text = member->tblkzk_bikou;
}

void CarryOutSuccession(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const auto no1 = values::readInt16(form.frm01_no.text);
    const auto no2 = values::readInt16(form.frm01_eno.text);
    if (!no1 || !no2 || *no1 == 0) {
        desk.notify(u"檀家を照会してから登録して下さい"_s, title);
        return;
    }
    if (!checked(form, desk) || !desk.ask(u"入力された内容で檀家さんを変更しますか？"_s, title))
        return;
    context.publishHousehold(*no1);
    context.dnk_no2 = *no2;
    if (!writeHousehold(form, context)) {
        desk.notify(noHousehold, title);
        return;
    }
    desk.notify(u"入力された内容で檀家さんは更新されました。"_s, title);
    if (!writeNewHead(form, context, desk.today())) {
        desk.notify(notAMember, title);
        return;
    }
    desk.notify(u"入力された内容で家族は更新されました。"_s, title);
    if (desk.ask(u"その他の家族の続柄も変更しますか？"_s, title)) {
        publish(form, context);
        desk.open(u"家族登"_s);
    }
}

void openFamilyOfSuccession(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    publish(form, context);
    desk.open(u"家族一"_s);
}

} // namespace households
