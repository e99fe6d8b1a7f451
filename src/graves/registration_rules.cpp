#include "graves/registration_rules.h"

#include "store/row_rules.h"
#include "store/table.h"
#include "values/numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace graves {

namespace {

const QString title = u"お墓 登録"_s;

std::int16_t householdShown(const お墓登Form& form) {
    return values::readInt16(form.frm13_no.text).value_or(0);
}

// The grave belongs to a household that the screen could not show: its row is missing.
bool householdIsMissing(const お墓登Form& form) {
    return form.held->tblhak_dnk_no != store::codes::noHousehold && form.held->tblhak_dnk_no != householdShown(form);
}

void listGraves(store::Database& database, お墓登Form& form, std::int16_t household) {
    form.frm13_all_bohyo.clear();
    for (const auto& row : store::selectAll<store::tbl_ohaka>(
             database, "WHERE tbl_ohaka.tblhak_dnk_no = ? ORDER BY tbl_ohaka.tblhak_bohyo_mei ASC;", household)) {
        if (!store::isInUse(row))
            continue;
        form.frm13_all_bohyo.items.append(row.tblhak_bohyo_mei);
        form.frm13_all_bohyo.keys.push_back(row.tblhak_no);
    }
}

void showHousehold(お墓登Form& form, const desk::HouseholdBlock& household) {
    form.household = household;
    form.household.dnk_handedOver = false;
    form.frm13_no.text = QString::number(household.dnk_no1);
    form.frm13_dankag.text = household.dnk_nameg;
    form.frm13_dankak.text = household.dnk_namek;
    form.frm13_toshug.text = household.dnk_toshug;
    form.frm13_toshuk.text = household.dnk_toshuk;
    form.frm13_yubinno.text = household.dnk_yubin;
    form.frm13_jyusho1.text = household.dnk_jyusho1;
    form.frm13_jyusho2.text = household.dnk_jyusho2;
    form.frm13_tel.text = household.dnk_tel;
    form.frm13_dnkbiko.text = household.dnk_bikou;
    form.frm13_dnkkbn1.chosen = household.dnk_kbn == store::codes::parishioner;
    form.frm13_dnkkbn2.chosen = !form.frm13_dnkkbn1.chosen;
}

// Reads the household into context and screen and lists its graves. A missing one leaves both with the household they
// had, so that the screen never stores one number under another household's name.
void lookUpHousehold(store::Database& database, お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk,
                     std::int16_t no1) {
    const auto row = store::findHousehold(database, no1);
    if (!row) {
        desk.notify(u"指定された檀家番号を読めませんません。DBの整合性を確認して下さい"_s, title);
        return;
    }
    const auto household = desk::HouseholdBlock::of(*row);
    context.publishHousehold(household);
    showHousehold(form, household);
    listGraves(database, form, no1);
}

void link(const QString& picker, お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    context.hak_himo_no = 0;
    desk.open(picker, desk::Opening::modal, [&form, &context, &desk] {
        if (context.hak_himo_no == 0)
            return;
        form.frm13_haka_no.text = QString::number(context.hak_himo_no);
        lookUpGrave(form, context, desk);
    });
}

// The place must exist already and not be held by another household.
bool placeIsFree(store::Database& database, const お墓登Form& form) {
    const auto there = gravesAt(database, form);
    const std::int16_t household = householdIsMissing(form) ? form.held->tblhak_dnk_no : householdShown(form);
    return !there.empty() && std::ranges::all_of(there, [&](const store::tbl_ohaka& grave) {
        return store::isDisposed(grave) || grave.tblhak_bohyo_kbn == store::codes::vacantGrave ||
               grave.tblhak_dnk_no == store::codes::noHousehold || grave.tblhak_dnk_no == household;
    });
}

} // namespace

void beginRegistration(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    fillDateLists(database, form);
    context.chk_msg.clear();
    if (context.dnk_no1 != 0) {
        if (context.dnk_handedOver)
            showHousehold(form, context);
        else
            lookUpHousehold(database, form, context, desk, context.dnk_no1);
    }
    form.held.showNew(desk::householdLabel(context.dnk_no1, store::codes::mainHousehold));
    form.frm13_haka_no.keyboard = form.frm13_haka_no.whole = true;
    if (context.hak_no != 0) {
        form.frm13_haka_no.text = QString::number(context.hak_no);
        lookUpGrave(form, context, desk);
    }
    listGraves(database, form, householdShown(form));
}

void lookUpGrave(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    const auto grave = findGrave(database, form.frm13_haka_no);
    if (!grave) {
        desk.notify(u"指定されたお墓は登録されていません。確認して下さい"_s, title);
        return;
    }
    const bool ofAnother = grave->tblhak_dnk_no != store::codes::noHousehold && grave->tblhak_dnk_no != context.dnk_no1;
    if (ofAnother && !desk.ask(u"檀家番号が変更になりました。新しい番号で処理を続けますか？"_s, title))
        return;
    showGrave(database, *grave, form, desk);
    if (ofAnother)
        lookUpHousehold(database, form, context, desk, grave->tblhak_dnk_no);
}

std::optional<desk::AskedRecord> askedGrave(const お墓登Form& form, const desk::ScreenContext& context) {
    if (context.hak_no != 0 || context.dnk_no1 == 0 || context.dnk_no1 == householdShown(form))
        return askedGrave(context);
    return desk::Record::newRecord(desk::householdLabel(context.dnk_no1, store::codes::mainHousehold));
}

void pickGrave(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const int line = form.frm13_all_bohyo.current;
    if (line < 0)
        return;
    store::Database database;
    // Graves of one household may bear the same marker name: the one that was clicked is opened.
    auto grave = store::find(database, store::idxhak_no, form.frm13_all_bohyo.keys[static_cast<std::size_t>(line)]);
    if (grave &&
        (grave->tblhak_dnk_no != householdShown(form) || grave->tblhak_bohyo_mei != form.frm13_all_bohyo.currentText()))
        grave.reset();
    if (!grave) {
        desk.notify(u"お墓の情報が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s, title);
        return;
    }
    showGrave(database, *grave, form, desk);
    context.hak_no = grave->tblhak_no;
}

void linkBySection(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    link(u"紐区画"_s, form, context, desk);
}

void linkByMarker(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    link(u"紐墓標"_s, form, context, desk);
}

void updateGrave(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (form.frm13_haka_no.text.isEmpty()) {
        desk.notify(u"登録NOを入力して下さい"_s, title);
        return;
    }
    if (!form.namesGraveHeld()) {
        sayNumberChanged(title, desk);
        return;
    }
    GraveDates dates;
    {
        store::Database database;
        desk::SaveAttempt attempt(context);
        attempt.required(form.frm13_banchi1, u"お墓の場所を入力して下さい"_s);
        attempt.required(form.frm13_banchi2, u"お墓の番地を入力して下さい"_s);
        attempt.required(form.frm13_bohyo, u"墓標名を入力して下さい"_s);
        dates = checkDatesAndFees(database, form, attempt, context, desk);
        if (attempt.reported(desk, title))
            return;
        if (!placeIsFree(database, form)) {
            context.chk_errflg = u"1"_s;
            form.frm13_banchi1.keyboard = true;
            desk.notify(u"区画と番地の変更ができません。入力した内容をﾁｪｯｸしてください"_s, title);
            return;
        }
    }
    if (!desk.ask(u"入力された内容でお墓を変更します。内容を確認して下さい。"_s, title))
        return;
    const bool written = editGrave(form, title, desk, [&](store::tbl_ohaka& row) {
        takeFields(form, dates, row);
        row.tblhak_bohyo_kbn = form.frm13_haka2.chosen ? store::codes::familyGrave : store::codes::individualGrave;
        row.tblhak_haiki_ymd = {};
        if (householdIsMissing(form))
            return;
        row.tblhak_dnk_no = householdShown(form);
        row.tblhak_dnk_nameg = form.frm13_dankag.text;
        row.tblhak_dnk_namek = form.frm13_dankak.text;
        row.tblhak_dnk_kbn = desk::categoryText(form.frm13_dnkkbn1.chosen);
        row.tblhak_kanaidx = store::kanaIndex(form.frm13_dankak.text);
    });
    if (written)
        desk.notify(u"入力された内容でお墓は更新されました。"_s, title);
}

void removeGrave(お墓登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    removeGrave(form, u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, title, context, desk);
}

void disposeGrave(お墓登Form& form, desk::ScreenContext&, desk::Desk& desk) {
    if (!form.namesGraveHeld()) {
        sayNumberChanged(title, desk);
        return;
    }
    const bool written = editGrave(form, title, desk, [&](store::tbl_ohaka& row) {
        row.tblhak_dnk_no = store::codes::noHousehold;
        row.tblhak_haiki_kbn = store::codes::yes;
        row.tblhak_haiki_ymd = desk.today();
    });
    if (written)
        desk.notify(u"指定されたお墓は廃棄処分されました。"_s, title);
}

} // namespace graves
