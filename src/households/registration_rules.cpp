#include "households/registration_rules.h"

#include "desk/numbering.h"
#include "desk/save_attempt.h"
#include "households/erasure_rules.h"
#include "households/move_rules.h"
#include "masters/master_rules.h"
#include "store/row_rules.h"
#include "store/table.h"
#include "values/numbers.h"

#include <sqlite3.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace households {

namespace {

const QString title = u"檀家 登録"_s;
const QString kind = store::codes::householdNumbers;

struct Numbers {
    std::int16_t no1;
    std::int16_t no2;
};

std::optional<Numbers> numbersOf(const 檀家登Form& form) {
    const auto no1 = values::readKeyNumber(form.frm01_no.text);
    const auto no2 = values::readKeyNumber(form.frm01_eno.text);
    if (!no1 || !no2)
        return {};
    return Numbers{*no1, *no2};
}

// The numbers of the household shown, one deleted here included; 0 when there is none.
Numbers shownNumbers(const 檀家登Form& form) {
    if (form.held.isNew())
        return {0, 0};
    return {form.held->tbldnk_no1, form.held->tbldnk_no2};
}

// True, with the message, when the boxes do not show the numbers of the household shown.
bool numbersChanged(const 檀家登Form& form, desk::Desk& desk) {
    const auto numbers = numbersOf(form);
    const Numbers shown = shownNumbers(form);
    if (numbers && numbers->no1 == shown.no1 && numbers->no2 == shown.no2)
        return false;
    desk.notify(u"登録NOが変更されています。照会からやり直して下さい"_s, title);
    return true;
}

void listGraves(store::Database& database, 檀家登Form& form, std::int16_t household) {
    for (desk::List* list :
         {&form.frm01_haka_no, &form.frm01_haka_banchi, &form.frm01_haka_banchi2, &form.frm01_haka_bohyo})
        list->clear();
    // Graves without a household are stored under the number 0 as well.
    if (household == 0)
        return;
    store::Selection<store::tbl_ohaka> graves(
        database, "WHERE tbl_ohaka.tblhak_dnk_no = ? ORDER BY tbl_ohaka.tblhak_bohyo_mei ASC", household);
    while (graves.next()) {
        if (!store::isInUse(graves.row()))
            continue;
        form.frm01_haka_no.items.append(QString::number(graves.row().tblhak_no));
        form.frm01_haka_banchi.items.append(graves.row().tblhak_banchi1);
        form.frm01_haka_banchi2.items.append(graves.row().tblhak_banchi2);
        form.frm01_haka_bohyo.items.append(graves.row().tblhak_bohyo_mei);
    }
}

bool checked(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const auto field = [](desk::Text& box) { return RequiredField{box, !box.text.isEmpty()}; };
    if (ValidateHousehold({field(form.frm01_dankag), field(form.frm01_dankak), field(form.frm01_yubinno),
                           field(form.frm01_jyusho1), field(form.frm01_tel), field(form.frm01_toshug),
                           field(form.frm01_toshuk)},
                          context))
        return true;
    desk.notify(householdInvalid, title);
    return false;
}

// The household of the boxes as it would be stored, under the given numbers.
desk::HouseholdBlock typedHousehold(const 檀家登Form& form, Numbers numbers) {
    desk::HouseholdBlock household = form.fields();
    household.dnk_no1 = numbers.no1;
    household.dnk_no2 = numbers.no2;
    household.dnk_toshug = form.frm01_toshug.text;
    household.dnk_haka_basho = desk::placeText(form.frm01_haka_nai.chosen);
    return household;
}

void showHousehold(檀家登Form& form, const desk::HouseholdBlock& household) {
    form.showFields(household);
    form.frm01_toshug.text = household.dnk_toshug;
    form.frm01_haka_nai.chosen = household.dnk_haka_basho == desk::placeText(true);
    form.frm01_haka_soto.chosen = !form.frm01_haka_nai.chosen;
}

// Nothing when there is no counter table to read a number from.
std::optional<std::int16_t> proposedNumber(store::Database& database, desk::Desk& desk) {
    try {
        return desk::ProposeNumber(database, desk, kind, title);
    } catch (const SQLite::Exception& failure) {
        if (failure.getErrorCode() != SQLITE_ERROR)
            throw;
        desk.notify(u"発番ﾃｰﾌﾞﾙがありません。DBの整合性をﾁｪｯｸしてください"_s, title);
        return {};
    }
}

QString digitsOf(const QString& text) {
    QString digits;
    for (const QChar c : text) {
        if (c.digitValue() >= 0)
            digits += QString::number(c.digitValue());
    }
    return digits;
}

// Tells in the bar of a household with the same name and, digit by digit, the same telephone. Names are not indexed: of
// some ten thousand rows each is looked at, but only those of the name are read.
void tellOfSame(store::Database& database, 檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const QString telephone = digitsOf(form.frm01_tel.text);
    if (telephone.isEmpty())
        return;
    std::vector<store::tbl_danka> same =
        store::selectAll<store::tbl_danka>(database, "WHERE tbldnk_nameg = ?", form.frm01_dankag.text);
    std::erase_if(same, [&](const store::tbl_danka& row) { return digitsOf(row.tbldnk_tel) != telephone; });
    if (same.empty())
        return;
    const store::tbl_danka& first = same.front();
    const QString more = same.size() > 1 ? u"（ほか%1件）"_s.arg(same.size() - 1) : QString();
    desk.hint(u"同じ檀家名と電話番号の檀家があります：%1 %2 %3%4"_s.arg(desk::labelOf(first), first.tbldnk_nameg,
                                                                        first.tbldnk_toshug, more),
              {&form.frm01_dankag, &form.frm01_tel},
              {{u"同じ檀家"_s, u"表示"_s, u'O',
                [&form, &context, &desk, numbers = Numbers{first.tbldnk_no1, first.tbldnk_no2}] {
                    form.frm01_no.text = QString::number(numbers.no1);
                    form.frm01_eno.text = QString::number(numbers.no2);
                    LoadHousehold(form, context, desk);
                }}});
}

} // namespace

desk::Refusal householdRefusal() {
    return {title, u"指定された檀家番号を読めませんません。DBの整合性を確認して下さい"_s};
}

void HouseholdFields::showFields(const desk::HouseholdBlock& household) {
    frm01_no.text = QString::number(household.dnk_no1);
    frm01_eno.text = QString::number(household.dnk_no2);
    frm01_dankag.text = household.dnk_nameg;
    frm01_dankak.text = household.dnk_namek;
    frm01_dnkkbn1.chosen = household.dnk_kbn == desk::categoryText(true);
    frm01_dnkkbn2.chosen = !frm01_dnkkbn1.chosen;
    frm01_toshuk.text = household.dnk_toshuk;
    frm01_yubinno.text = household.dnk_yubin;
    frm01_jyusho1.text = household.dnk_jyusho1;
    frm01_jyusho2.text = household.dnk_jyusho2;
    frm01_tel.text = household.dnk_tel;
    frm01_fax.text = household.dnk_fax;
    frm01_地区.text = household.dnk_chiku;
    frm01_biko.text = household.dnk_bikou;
}

desk::HouseholdBlock HouseholdFields::fields() const {
    desk::HouseholdBlock household;
    if (!held.isNew()) {
        household.dnk_no1 = held->tbldnk_no1;
        household.dnk_no2 = held->tbldnk_no2;
    }
    household.dnk_nameg = frm01_dankag.text;
    household.dnk_namek = frm01_dankak.text;
    household.dnk_kbn = desk::categoryText(frm01_dnkkbn1.chosen);
    household.dnk_toshuk = frm01_toshuk.text;
    household.dnk_yubin = frm01_yubinno.text;
    household.dnk_jyusho1 = frm01_jyusho1.text;
    household.dnk_jyusho2 = frm01_jyusho2.text;
    household.dnk_tel = frm01_tel.text;
    household.dnk_fax = frm01_fax.text;
    household.dnk_chiku = frm01_地区.text;
    household.dnk_bikou = frm01_biko.text;
    return household;
}

bool ValidateHousehold(std::initializer_list<RequiredField> fields, desk::ScreenContext& context) {
    desk::SaveAttempt attempt(context);
    for (const RequiredField& field : fields)
        attempt.check(field.filled, field.control, householdInvalid);
    return !attempt.failed();
}

bool PublishHousehold(const 檀家登Form& form, desk::ScreenContext& context) {
    const auto numbers = numbersOf(form);
    if (!numbers)
        return false;
    desk::HouseholdBlock household = typedHousehold(form, *numbers);
    household.dnk_handedOver = true;
    context.publishHousehold(household);
    return true;
}

void nameShown(const HouseholdFields& form, desk::ScreenContext& context) {
    if (form.held.isNew())
        context.publishHousehold(0);
    publishShown(form, context);
}

void publishShown(const HouseholdFields& form, desk::ScreenContext& context) {
    if (form.held.isNew())
        return;
    context.publishHousehold(form.held->tbldnk_no1);
    context.dnk_no2 = form.held->tbldnk_no2;
}

void beginHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (!context.dnk_branchNamed)
        context.dnk_no2 = 0;
    loadBranch(form, context, desk);
}

void loadBranch(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    {
        store::Database database;
        masters::CMB設定(database, masters::Category::地区, form.frm01_地区);
    }
    form.frm01_dnkkbn1.chosen = true;
    form.frm01_haka_nai.chosen = true;
    form.frm01_no.text = QString::number(context.dnk_no1);
    form.frm01_eno.text = QString::number(context.dnk_no2);
    form.frm01_no.keyboard = form.frm01_no.whole = true;
    form.held.showNew();
    if (context.dnk_no1 != 0)
        LoadHousehold(form, context, desk);
}

void newHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    desk::ScreenContext nothing = context;
    nothing.publishHousehold(desk::HouseholdBlock());
    檀家登Form empty;
    loadBranch(empty, nothing, desk);
    // The number is issued by 登録.
    empty.frm01_no.keyboard = empty.frm01_no.whole = false;
    empty.frm01_dankag.keyboard = true;
    context = std::move(nothing);
    form = std::move(empty);
}

void LoadHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const auto numbers = numbersOf(form);
    if (!numbers) {
        desk.notify(u"登録番号は数字で入力して下さい"_s, title);
        return;
    }
    context.publishHousehold(numbers->no1);
    context.dnk_no2 = numbers->no2;
    store::Database database;
    const auto found = store::find(database, store::idxdnk_no, numbers->no1, numbers->no2);
    if (!found) {
        desk.notify(u"指定された檀家番号は登録されていません。確認して下さい"_s, title);
        return;
    }
    context.publishHousehold(desk::HouseholdBlock::of(*found));
    showHousehold(form, context);
    form.held.show(*found);
    listGraves(database, form, context.dnk_no1);
}

void RegisterHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    const auto number = proposedNumber(database, desk);
    if (!number)
        return;
    form.frm01_no.text = QString::number(*number);
    form.frm01_eno.text = u"0"_s;
    if (!checked(form, context, desk))
        return;
    tellOfSame(database, form, context, desk);
    if (!desk.ask(u"入力された内容で檀家さんを登録します。内容を確認して下さい。"_s, title))
        return;
    context.publishHousehold(typedHousehold(form, {*number, 0}));

    // Write row, district and counter in one transaction: if the counter stayed behind, the same number would be
    // proposed again and again.
    bool taken = false;
    bool counted = false;
    store::tbl_danka row;
    {
        store::Write write(database);
        taken = store::find(database, store::idxdnk_no, context.dnk_no1, context.dnk_no2).has_value();
        if (!taken) {
            row.tbldnk_no1 = context.dnk_no1;
            row.tbldnk_no2 = context.dnk_no2;
            context.writeInto(row);
            row.tbldnk_oyano = std::int16_t{0};
            row.tbldnk_bunkekbn = store::codes::noBranchFamily;
            row.tbldnk_addymd = desk.today();
            store::Table(database, store::idxdnk_no).insert(row);
            masters::MST設定(database, masters::Category::地区, form.frm01_地区.text);
            counted = desk::CommitNumber(database, kind, *number);
            write.commit();
        }
    }
    if (taken) {
        desk.notify(u"指定された檀家番号は既に登録されています"_s, title);
        return;
    }
    form.held.wrote(row);
    if (!counted)
        desk.notify(desk::notCounted, title);
    desk.inform(u"%1 %2を登録しました"_s.arg(desk::labelOf(row), row.tbldnk_nameg));
    listGraves(database, form, context.dnk_no1);
    masters::CMB設定(database, masters::Category::地区, form.frm01_地区);
}

void UpdateHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (numbersChanged(form, desk) || !checked(form, context, desk) ||
        !desk.ask(u"入力された内容で檀家さんを変更します。内容を確認して下さい。"_s, title))
        return;
    const desk::HouseholdBlock household = typedHousehold(form, shownNumbers(form));
    const store::tbl_danka before = form.held.isNew() ? store::tbl_danka() : form.held.row();
    store::Database database;
    const bool changed = desk::change(
        form.held, database, householdRefusal(), desk, [&](store::tbl_danka& row) { household.writeInto(row); },
        [&] { masters::MST設定(database, masters::Category::地区, form.frm01_地区.text); });
    if (!changed)
        return;
    context.publishHousehold(household);
    desk.notify(u"入力された内容で檀家さんは更新されました。"_s, title);
    masters::CMB設定(database, masters::Category::地区, form.frm01_地区);
    offerCopies(form.held, before, householdRefusal(), desk);
}

void DeleteHousehold(檀家登Form& form, desk::ScreenContext&, desk::Desk& desk) {
    if (numbersChanged(form, desk) || !desk.ask(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, title, desk::Preset::no))
        return;
    store::Database database;
    desk::Deletion deletion(desk, title, u"削除"_s);
    if (!desk::remove(form.held, database, householdRefusal(), deletion))
        return;
    desk.notify(u"指定された檀家さんは削除されました。"_s, title);
    deletion.offerUndo(form.held);
}

void eraseShownHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const auto numbers = numbersOf(form);
    bool leftOvers = false;
    if (numbers && numbers->no1 > 0) {
        store::Database database;
        leftOvers = !store::find(database, store::idxdnk_no, numbers->no1);
    }
    if (leftOvers) {
        if (!desk.ask(
                u"登録番号%1の檀家は登録されていません。この番号に残っているものを抹消しますか？"_s.arg(numbers->no1),
                title, desk::Preset::no))
            return;
    } else {
        if (numbersChanged(form, desk))
            return;
        if (shownNumbers(form).no1 < 1) {
            desk.notify(u"檀家を照会してから抹消して下さい"_s, title);
            return;
        }
    }
    if (!desk.ask(u"檀家さんに関する全ての情報を抹消します。内容を確認して下さい。"_s, title, desk::Preset::no))
        return;
    const desk::Held<store::tbl_danka> nobody;
    // Copies bear any name that the household ever had: without one, all that is left of it is reached.
    if (leftOvers)
        context.publishHousehold(desk::HouseholdBlock::numbered(numbers->no1));
    else
        PublishHousehold(form, context);
    const desk::Deletion erased = EraseHousehold(context, desk, leftOvers ? &nobody : &form.held);
    // The person or grave that the context names may just have been erased.
    static_cast<desk::MemberBlock&>(context) = {};
    static_cast<desk::GraveBlock&>(context) = {};
    context.clearDeceased();
    store::Database database;
    listGraves(database, form, shownNumbers(form).no1);
    if (form.held && !store::find(database, store::idxdnk_no, form.held->tbldnk_no1, form.held->tbldnk_no2))
        form.held.removed();
    if (leftOvers)
        erased.offerUndo();
    else
        erased.offerUndo(form.held);
}

void openGraves(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (numbersChanged(form, desk) || !PublishHousehold(form, context))
        return;
    desk.open(u"お墓登"_s, desk::Opening::modal, [&form] {
        store::Database database;
        listGraves(database, form, shownNumbers(form).no1);
    });
}

void openForHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk, const QString& screen) {
    if (!numbersChanged(form, desk) && PublishHousehold(form, context))
        desk.open(screen);
}

} // namespace households
