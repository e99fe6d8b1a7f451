#include "households/succession_rules.h"

#include "desk/save_attempt.h"
#include "households/move_rules.h"
#include "masters/master_rules.h"
#include "store/row_rules.h"
#include "store/table.h"

using namespace Qt::StringLiterals;

namespace households {

namespace {

const QString title = u"代替り処理"_s;
const QString notAMember = u"家族名が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s;
const QString noHousehold = u"指定された檀家番号を読めません。DBの整合性を確認して下さい"_s;

// An empty box keeps the stored value.
void writeIfFilled(QString& field, const QString& text) {
    if (!text.isEmpty())
        field = text;
}

void listCandidates(store::Database& database, 代替当Form& form, std::int16_t household) {
    form.frm01_toshug.clear();
    form.frm01_tsh_zkgr.clear();
    form.householdNames.clear();
    store::Table family(database, store::idxkzk_no);
    for (family.seek(store::Seek::equal, household); !family.eof() && family.row().tblkzk_no1 == household;
         family.moveNext()) {
        if (!store::isLiving(family.row()))
            continue;
        form.frm01_toshug.items.append(family.row().tblkzk_nameg);
        form.frm01_tsh_zkgr.items.append(family.row().tblkzk_zokugara);
        form.householdNames.append(family.row().tblkzk_dnknameg);
    }
}

bool checked(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const auto field = [](desk::Text& box) { return RequiredField{box, !box.text.isEmpty()}; };
    if (ValidateHousehold({field(form.frm01_dankag),
                           field(form.frm01_dankak),
                           field(form.frm01_yubinno),
                           field(form.frm01_jyusho1),
                           field(form.frm01_tel),
                           {form.frm01_toshug, !form.frm01_toshug.currentText().isEmpty()},
                           field(form.frm01_toshuk)},
                          context))
        return true;
    desk.notify(householdInvalid, title);
    return false;
}

void writeHousehold(const desk::HouseholdBlock& household, store::tbl_danka& row) {
    row.tbldnk_nameg = household.dnk_nameg;
    row.tbldnk_namek = household.dnk_namek;
    row.tbldnk_dnkkbn = household.dnk_kbn;
    row.tbldnk_yubin = household.dnk_yubin;
    row.tbldnk_jyusho1 = household.dnk_jyusho1;
    row.tbldnk_tel = household.dnk_tel;
    row.tbldnk_kanaidx = store::kanaIndex(household.dnk_namek);
    row.tbldnk_toshug = household.dnk_toshug;
    row.tbldnk_toshuk = household.dnk_toshuk;
    writeIfFilled(row.tbldnk_jyusho2, household.dnk_jyusho2);
    writeIfFilled(row.tbldnk_fax, household.dnk_fax);
    writeIfFilled(row.tbldnk_chiku, household.dnk_chiku);
    writeIfFilled(row.tbldnk_bikou, household.dnk_bikou);
}

void writeNewHead(const desk::HouseholdBlock& household, store::tbl_kazoku& row, QDate today) {
    row.tblkzk_zokugara = store::codes::head;
    row.tblkzk_dohkyokbn = store::codes::inHouse;
    row.tblkzk_seishikbn = store::codes::living;
    row.tblkzk_yubin = household.dnk_yubin;
    row.tblkzk_jusho1 = household.dnk_jyusho1;
    row.tblkzk_tel = household.dnk_tel;
    writeIfFilled(row.tblkzk_jusho2, household.dnk_jyusho2);
    writeIfFilled(row.tblkzk_fax, household.dnk_fax);
    writeIfFilled(row.tblkzk_chiku, household.dnk_chiku);
    writeIfFilled(row.tblkzk_bikou, household.dnk_bikou);
    row.tblkzk_kanaidx = store::kanaIndex(household.dnk_namek);
    row.tblkzk_add_ymd = today;
}

desk::HouseholdBlock typedHousehold(const 代替当Form& form) {
    desk::HouseholdBlock household = form.fields();
    household.dnk_toshug = form.frm01_toshug.currentText();
    return household;
}

void handOver(const 代替当Form& form, desk::ScreenContext& context) {
    desk::HouseholdBlock household = typedHousehold(form);
    household.dnk_haka_basho = context.dnk_haka_basho;
    household.dnk_handedOver = true;
    context.publishHousehold(household);
}

} // namespace

void LoadSuccession(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    masters::CMB設定(database, masters::Category::地区, form.frm01_地区);
    form.held.showNew();
    // The new head's reading is not the former one's.
    const auto show = [&form, &context] {
        form.showFields(context);
        form.frm01_toshuk.text.clear();
    };
    if (context.dnk_no1 == 0) {
        show();
        return;
    }
    const auto household = store::find(database, store::idxdnk_no, context.dnk_no1, context.dnk_no2);
    if (!household) {
        desk.notify(noHousehold, title);
        return;
    }
    if (!context.dnk_handedOver)
        context.publishHousehold(desk::HouseholdBlock::of(*household));
    show();
    form.held.show(*household);
    listCandidates(database, form, context.dnk_no1);
}

void PickNewHead(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    std::optional<store::tbl_kazoku> member;
    // If two members have the same name, the chosen line decides: the one stored under this household's name, or none.
    if (form.householdNames.value(form.frm01_toshug.current) == context.dnk_nameg) {
        store::Database database;
        member = store::find(database, store::idxkzk_kazoku, context.dnk_no1, context.dnk_nameg,
                             form.frm01_toshug.currentText());
    }
    if (!member || !store::isLiving(*member)) {
        form.frm01_toshug.current = form.frm01_tsh_zkgr.current = -1;
        form.newHead.showNew();
        desk.notify(notAMember, title);
        return;
    }
    form.newHead.show(*member);
    desk::HouseholdBlock household = form.fields();
    household.dnk_nameg = member->tblkzk_dnknameg;
    household.dnk_namek = member->tblkzk_dnknamek;
    household.dnk_toshuk = member->tblkzk_namek;
    household.dnk_yubin = member->tblkzk_yubin;
    household.dnk_jyusho1 = member->tblkzk_jusho1;
    household.dnk_jyusho2 = member->tblkzk_jusho2;
    household.dnk_tel = member->tblkzk_tel;
    household.dnk_fax = member->tblkzk_fax;
    household.dnk_chiku = member->tblkzk_chiku;
    household.dnk_bikou = member->tblkzk_bikou;
    form.showFields(household);
    form.held.filledAnew();
}

Differences differences(const 代替当Form& form) {
    if (!form.held)
        return {};
    const store::tbl_danka& row = form.held.row();
    const auto category = desk::categoryText(form.frm01_dnkkbn1.chosen);
    const auto storedCategory = desk::categoryText(row.tbldnk_dnkkbn == desk::categoryText(true));
    struct Box {
        QString name;
        QString label;
        const QString& shown;
        const QString& stored;
        bool keeps = false; // emptied it leaves what is stored
    };
    const Box boxes[] = {{u"frm01_dankag"_s, u"檀家名"_s, form.frm01_dankag.text, row.tbldnk_nameg},
                         {u"frm01_dankak"_s, u"カナ"_s, form.frm01_dankak.text, row.tbldnk_namek},
                         {u"frm01_dnkkbn1"_s, u"檀家区分"_s, category, storedCategory},
                         {u"frm01_yubinno"_s, u"郵便番号"_s, form.frm01_yubinno.text, row.tbldnk_yubin},
                         {u"frm01_jyusho1"_s, u"住所１"_s, form.frm01_jyusho1.text, row.tbldnk_jyusho1},
                         {u"frm01_jyusho2"_s, u"住所２"_s, form.frm01_jyusho2.text, row.tbldnk_jyusho2, true},
                         {u"frm01_tel"_s, u"電話番号"_s, form.frm01_tel.text, row.tbldnk_tel},
                         {u"frm01_fax"_s, u"FAX"_s, form.frm01_fax.text, row.tbldnk_fax, true},
                         {u"frm01_地区"_s, u"地区"_s, form.frm01_地区.text, row.tbldnk_chiku, true},
                         {u"frm01_biko"_s, u"備考"_s, form.frm01_biko.text, row.tbldnk_bikou, true}};
    Differences found;
    QStringList changed;
    QStringList kept;
    for (const Box& box : boxes) {
        if (box.shown == box.stored)
            continue;
        found.boxes << box.name;
        if (box.keeps && box.shown.isEmpty())
            kept << u"%1「%2」"_s.arg(box.label, box.stored);
        else
            changed << box.label;
    }
    QStringList lines;
    if (!changed.isEmpty())
        lines << u"檀家の今の記録から変わる欄："_s + changed.join(u"、"_s);
    if (!kept.isEmpty())
        lines << u"空欄なので今の記録が残る欄："_s + kept.join(u"、"_s);
    found.text = lines.join(u'\n');
    return found;
}

void CarryOutSuccession(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (form.held.isNew()) {
        desk.notify(u"檀家を照会してから登録して下さい"_s, title);
        return;
    }
    if (!checked(form, context, desk) || !desk.ask(u"入力された内容で檀家さんを変更しますか？"_s, title))
        return;
    const desk::HouseholdBlock household = typedHousehold(form);
    store::Database database;
    const auto memberRefused = [&] {
        store::Table family(database, store::idxkzk_kazoku);
        const desk::Standing standing = form.newHead.seek(family);
        family.release();
        return desk::refused(standing, form.newHead, {title, notAMember}, desk);
    };
    const store::tbl_danka before = form.held.row();
    // Compare both rows with the file before the first of the two writes.
    if (memberRefused() || !desk::change(form.held, database, {title, noHousehold}, desk,
                                         [&](store::tbl_danka& row) { writeHousehold(household, row); }))
        return;
    desk.notify(u"入力された内容で檀家さんは更新されました。"_s, title);
    const bool done = desk::change(form.newHead, database, {title, notAMember}, desk,
                                   [&](store::tbl_kazoku& row) { writeNewHead(household, row, desk.today()); });
    // The names only: the address is the new head's own, the others' stay. The members listed bear the names.
    store::tbl_danka formerlyNamed = form.held.row();
    formerlyNamed.tbldnk_nameg = before.tbldnk_nameg;
    formerlyNamed.tbldnk_namek = before.tbldnk_namek;
    offerCopies(form.held, formerlyNamed, {title, noHousehold}, desk, {}, [&form] { form.held.filledAnew(); });
    if (!done)
        return;
    desk.notify(u"入力された内容で家族は更新されました。"_s, title);
    if (desk.ask(u"その他の家族の続柄も変更しますか？"_s, title)) {
        handOver(form, context);
        desk.open(u"家族登"_s);
    }
}

void openFamilyOfSuccession(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    handOver(form, context);
    desk.open(u"家族一"_s);
}

} // namespace households
