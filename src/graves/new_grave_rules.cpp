#include "graves/new_grave_rules.h"

#include "desk/numbering.h"
#include "store/row_rules.h"
#include "store/table.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace graves {

namespace {

const QString title = u"お墓 新規登録"_s;
const QString numberingTitle = u"お墓 登録"_s;
const QString numberKind = store::codes::graveNumbers;

QString kindChosen(const お墓新Form& form) {
    if (form.frm13_haka3.chosen)
        return store::codes::vacantGrave;
    return form.frm13_haka2.chosen ? store::codes::familyGrave : store::codes::individualGrave;
}

// The dates to store when all fields pass; otherwise the message has been shown.
std::optional<GraveDates> check(store::Database& database, お墓新Form& form, desk::ScreenContext& context,
                                desk::Desk& desk) {
    desk::SaveAttempt attempt(context);
    attempt.required(form.frm13_banchi1, u"お墓の場所を入力して下さい"_s);
    attempt.required(form.frm13_banchi2, u"お墓の番地を入力して下さい"_s);
    const GraveDates dates = checkDatesAndFees(database, form, attempt, context, desk);
    if (attempt.reported(desk, title))
        return {};
    return dates;
}

// Colours the place; a wrong one is told.
bool checkPlace(bool good, const QString& message, お墓新Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    desk::SaveAttempt attempt(context);
    attempt.check(good, form.frm13_banchi1, message);
    form.frm13_banchi2.colour = form.frm13_banchi1.colour;
    return !attempt.reported(desk, title);
}

// The name box still shows what the grave looked up bears.
bool showsFormerName(const お墓新Form& form) {
    return !form.held.isNew() && form.frm13_dnknameg.text == form.held->tblhak_dnk_nameg;
}

} // namespace

void beginNewGrave(お墓新Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    fillDateLists(database, form);
    form.held.showNew();
    form.frm13_haka_no.keyboard = form.frm13_haka_no.whole = true;
    if (context.hak_no == 0)
        return;
    form.frm13_haka_no.text = QString::number(context.hak_no);
    lookUpGrave(form, context, desk);
}

void newGrave(お墓新Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    desk::ScreenContext nothing = context;
    nothing.hak_no = 0;
    お墓新Form empty;
    beginNewGrave(empty, nothing, desk);
    // The number is issued by 登録.
    empty.frm13_haka_no.keyboard = false;
    empty.frm13_banchi1.keyboard = true;
    context = std::move(nothing);
    form = std::move(empty);
}

void lookUpGrave(お墓新Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    const auto grave = findGrave(database, form.frm13_haka_no);
    if (!grave) {
        desk.notify(u"指定されたお墓は登録されていません。確認して下さい"_s, title);
        return;
    }
    showGrave(database, *grave, form, desk);
    form.frm13_haka3.chosen = grave->tblhak_bohyo_kbn == store::codes::vacantGrave;
    if (form.frm13_haka3.chosen)
        form.frm13_haka1.chosen = form.frm13_haka2.chosen = false;
    form.frm13_dnknameg.text = grave->tblhak_dnk_nameg;
    context.hak_no = grave->tblhak_no;
}

void registerGrave(お墓新Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    std::int16_t number = 0;
    std::optional<GraveDates> dates;
    {
        store::Database database;
        const auto proposed = desk::ProposeNumber(database, desk, numberKind, numberingTitle);
        if (!proposed)
            return;
        number = context.hak_no = *proposed;
        form.frm13_haka_no.text = QString::number(number);
        dates = check(database, form, context, desk);
        if (!dates)
            return;
        const bool free = std::ranges::all_of(gravesAt(database, form), store::isDisposed);
        if (!checkPlace(free, u"区画と番地がタブっています。入力した内容をﾁｪｯｸしてください"_s, form, context, desk))
            return;
    }
    if (!desk.ask(u"入力された内容でお墓を登録します。内容を確認して下さい。"_s, title))
        return;

    if (showsFormerName(form))
        form.frm13_dnknameg.text.clear();
    bool taken = false;
    bool counted = false;
    store::tbl_ohaka row;
    {
        store::Database database;
        store::Write write(database);
        taken = findGrave(database, form.frm13_haka_no).has_value();
        if (!taken) {
            takeFields(form, *dates, row);
            row.tblhak_no = number;
            row.tblhak_dnk_nameg = form.frm13_dnknameg.text;
            row.tblhak_bohyo_kbn = kindChosen(form);
            row.tblhak_add_ymd = desk.today();
            store::Table(database, store::idxhak_no).insert(row);
            counted = desk::CommitNumber(database, numberKind, number);
            write.commit();
        }
    }
    if (taken) {
        desk.notify(u"指定されたお墓番号は既に登録されています"_s, title);
        return;
    }
    form.held.wrote(row);
    desk.notify(u"入力された内容でお墓は更新されました。"_s, title);
    if (!counted)
        desk.notify(desk::notCounted, numberingTitle);
}

void updateGrave(お墓新Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    // A number that was only proposed may be another grave's, brought by an import.
    if (!form.namesGraveHeld() || form.held->tblhak_no != context.hak_no) {
        sayNumberChanged(title, desk);
        return;
    }
    std::optional<GraveDates> dates;
    {
        store::Database database;
        dates = check(database, form, context, desk);
        if (!dates)
            return;
        if (!checkPlace(!gravesAt(database, form).empty(),
                        u"区画と番地の変更はできません。入力した内容をﾁｪｯｸしてください"_s, form, context, desk))
            return;
    }
    const bool held = form.held->tblhak_dnk_no != store::codes::noHousehold;
    if (held && !desk.ask(u"檀家に紐付いたお墓です。紐付けを外して更新しますか？"_s, title))
        return;
    if (!desk.ask(u"入力された内容でお墓を変更します。内容を確認して下さい。"_s, title))
        return;
    const QString name = held && showsFormerName(form) ? u""_s : form.frm13_dnknameg.text;
    const bool written = editGrave(form, title, desk, [&](store::tbl_ohaka& row) {
        takeFields(form, *dates, row);
        row.tblhak_dnk_no = store::codes::noHousehold;
        row.tblhak_dnk_nameg = name;
        if (held)
            row.tblhak_dnk_namek = row.tblhak_dnk_kbn = row.tblhak_kanaidx = u""_s;
        row.tblhak_bohyo_kbn = kindChosen(form);
        row.tblhak_add_ymd = desk.today();
    });
    if (!written)
        return;
    form.frm13_dnknameg.text = name;
    desk.notify(u"入力された内容でお墓は更新されました。"_s, title);
}

void removeGrave(お墓新Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    removeGrave(form, u"お墓を削除します。内容を確認して下さい。"_s, title, context, desk);
}

} // namespace graves
