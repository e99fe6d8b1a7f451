#include "family/death_registration_rules.h"

#include "calendar/date_groups.h"
#include "calendar/eras.h"
#include "desk/save_attempt.h"
#include "masters/master_rules.h"
#include "memorials/schedule_rules.h"
#include "store/row_rules.h"
#include "store/selections.h"
#include "store/table.h"
#include "values/dates.h"
#include "values/numbers.h"

#include <array>

using namespace Qt::StringLiterals;

namespace family {

namespace {

const QString title = u"過去帳登録"_s;
const QString memberMissing = u"家族名が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s;
const QString entryMissing = u"指定された過去帳を読めませんません。DBの整合性を確認して下さい"_s;

struct GraveKind {
    desk::Option 過去登Form::*option;
    QString code;
};

// Captions and stored codes are crossed: the option captioned 家 stores 個, and the other way round.
const std::array graveKinds{GraveKind{&過去登Form::frm11_haka1, store::codes::familyGrave},
                            GraveKind{&過去登Form::frm11_haka2, store::codes::individualGrave},
                            GraveKind{&過去登Form::frm11_haka3, store::codes::noGrave}};

std::int16_t age(const 過去登Form& form) {
    return values::readInt16(form.frm11_kyounen.text).value_or(0);
}

void fillFamilyLists(store::Database& database, 過去登Form& form, const desk::ScreenContext& context) {
    form.frm11_kazoku.clear();
    form.frm11_lzoku.clear();
    form.frm11_kankeisha.items.clear();
    for (const auto& member : store::familyOf(database, context.dnk_no1)) {
        if (!store::isLiving(member))
            continue;
        form.frm11_kazoku.items << member.tblkzk_nameg;
        form.frm11_kankeisha.items << member.tblkzk_nameg;
        form.frm11_lzoku.items << member.tblkzk_zokugara;
    }
}

void fillRegisterList(store::Database& database, 過去登Form& form, const desk::ScreenContext& context) {
    form.frm11_kakocho.clear();
    form.entryHouseholds.clear();
    for (const auto& entry : store::deathRegisterOf(database, context.dnk_no1)) {
        form.frm11_kakocho.items << entry.tblkak_zokunameg;
        form.entryHouseholds << entry.tblkak_dnknameg;
    }
}

void fillGraveList(store::Database& database, 過去登Form& form, const desk::ScreenContext& context) {
    form.frm11_haka_abohyo.clear();
    for (const auto& grave : store::gravesOf(database, context.dnk_no1)) {
        if (!store::isInUse(grave))
            continue;
        form.frm11_haka_abohyo.items << grave.tblhak_bohyo_mei;
        form.frm11_haka_abohyo.keys.push_back(grave.tblhak_no);
    }
}

// Shows the entry under these keys and publishes its deceased; false, with the message and nothing changed, when there
// is none.
bool show(store::Database& database, 過去登Form& form, const QString& householdName, const QString& name,
          desk::ScreenContext& context, desk::Desk& desk) {
    const auto row = store::find(database, store::idxkak_kakochou, context.dnk_no1, householdName, name);
    if (!row) {
        desk.notify(u"過去帳が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s, title);
        return false;
    }
    form.frm11_no.text = QString::number(row->tblkak_no);
    form.frm11_dankag.text = row->tblkak_dnknameg;
    form.frm11_dankak.text = row->tblkak_dnknamek;
    form.frm11_zoknameg.text = row->tblkak_zokunameg;
    form.frm11_zoknamek.text = row->tblkak_zokunamek;
    calendar::showDate(form.生年,
                       {row->tblkak_sei_gname, row->tblkak_sei_gyy, row->tblkak_sei_gmm, row->tblkak_sei_gdd},
                       row->tblkak_sei_ymd);
    calendar::showDate(form.命日,
                       {row->tblkak_mei_gname, row->tblkak_mei_gyy, row->tblkak_mei_gmm, row->tblkak_mei_gdd},
                       row->tblkak_mei_ymd);
    form.frm11_kyounen.text = row->tblkak_kyounen ? QString::number(*row->tblkak_kyounen) : QString();
    form.frm11_kaimyoug.text = row->tblkak_kaimyoug;
    form.frm11_kaimyouk.text = row->tblkak_kaimyouk;
    form.frm11_kankeisha.text = row->tblkak_kankeisha;
    form.frm11_続柄.text = row->tblkak_zokugara;
    form.frm11_bikou.text = row->tblkak_bikou;
    for (const GraveKind& kind : graveKinds)
        (form.*kind.option).chosen = row->tblkak_haka_kbn == kind.code;
    form.frm11_haka_nai.chosen = row->tblkak_haka_basho == store::codes::withinGrounds;
    form.frm11_haka_soto.chosen = !form.frm11_haka_nai.chosen;
    form.frm11_haka_no.text.clear();
    if (form.frm11_haka_nai.chosen) {
        if (row->tblkak_haka_no.value_or(0) > 0)
            form.frm11_haka_no.text = QString::number(*row->tblkak_haka_no);
        fillGraveList(database, form, context);
    }
    form.frm11_haka_banchi.text = row->tblkak_haka_blk1;
    form.frm11_haka_blk2.text = row->tblkak_haka_bch;
    form.held.show(*row);
    context.publishDeceased(*row);
    return true;
}

struct LifeDates {
    QDate birth;
    QDate death;
};

// The age at death is computed from the years of two good dates; one that is stored with the same dates stays.
void followAge(過去登Form& form, const LifeDates& dates) {
    const bool edited = form.held.isNew() || dates.birth != form.held->tblkak_sei_ymd ||
                        dates.death != form.held->tblkak_mei_ymd || !form.held->tblkak_kyounen;
    form.frm11_kyounen.text =
        QString::number(edited ? dates.death.year() - dates.birth.year() : int{*form.held->tblkak_kyounen});
}

// The dates when the boxes can be stored.
std::optional<LifeDates> check(store::Database& database, 過去登Form& form, desk::ScreenContext& context,
                               desk::Desk& desk) {
    if (context.dnk_no1 == 0) {
        desk.notify(u"檀家を照会してから登録して下さい"_s, title);
        return {};
    }
    desk::SaveAttempt attempt(context);
    attempt.required(form.frm11_zoknameg, u"俗名を入力して下さい"_s);
    attempt.required(form.frm11_zoknamek, u"俗名カナを入力して下さい"_s);
    LifeDates dates;
    dates.birth = calendar::checkRequiredDate(database, form.生年, calendar::生年月日, context, desk);
    dates.death = calendar::checkRequiredDate(database, form.命日, calendar::命日, context, desk);
    if (dates.birth.isValid() && dates.death.isValid()) {
        if (dates.death >= dates.birth) {
            followAge(form, dates);
        } else {
            form.命日.western.colour = desk::Colour::red;
            if (desk::recordFailure(context, u"命日が生年月日より前です"_s))
                form.命日.era.keyboard = true;
        }
    }
    attempt.required(form.frm11_kaimyoug, u"戒名を入力して下さい"_s);
    attempt.required(form.frm11_kaimyouk, u"戒名カナを入力して下さい"_s);
    attempt.required(form.frm11_kankeisha, u"関係者を選択して下さい"_s);
    attempt.required(form.frm11_続柄, u"続柄を選択して下さい"_s);
    const bool numberCounts = form.frm11_haka_nai.chosen && !form.frm11_haka_no.text.isEmpty();
    attempt.check(!numberCounts || values::readInt16(form.frm11_haka_no.text).value_or(-1) >= 0, form.frm11_haka_no,
                  u"管理番号は数字で入力して下さい"_s);
    if (attempt.reported(desk, title))
        return {};
    return dates;
}

// What 登録 and 更新 write alike. The grave kind stays as it is when none is chosen.
void write(store::tbl_kakocho& row, const 過去登Form& form, const LifeDates& dates) {
    row.tblkak_zokunamek = form.frm11_zoknamek.text;
    const calendar::EraFields birth = calendar::eraFields(form.生年);
    row.tblkak_sei_gname = birth.gname;
    row.tblkak_sei_gyy = birth.gyy;
    row.tblkak_sei_gmm = birth.gmm;
    row.tblkak_sei_gdd = birth.gdd;
    row.tblkak_sei_ymd = dates.birth;
    const calendar::EraFields death = calendar::eraFields(form.命日);
    row.tblkak_mei_gname = death.gname;
    row.tblkak_mei_gyy = death.gyy;
    row.tblkak_mei_gmm = death.gmm;
    row.tblkak_mei_gdd = death.gdd;
    row.tblkak_mei_ymd = dates.death;
    row.tblkak_kyounen = age(form);
    row.tblkak_kaimyoug = form.frm11_kaimyoug.text;
    row.tblkak_kaimyouk = form.frm11_kaimyouk.text;
    row.tblkak_kankeisha = form.frm11_kankeisha.text;
    row.tblkak_zokugara = form.frm11_続柄.text;
    row.tblkak_bikou = form.frm11_bikou.text;
    for (const GraveKind& kind : graveKinds) {
        if ((form.*kind.option).chosen)
            row.tblkak_haka_kbn = kind.code;
    }
    row.tblkak_haka_basho = form.frm11_haka_nai.chosen ? store::codes::withinGrounds : store::codes::outsideGrounds;
    row.tblkak_haka_no =
        form.frm11_haka_nai.chosen ? values::readInt16(form.frm11_haka_no.text).value_or(0) : std::int16_t{0};
    row.tblkak_haka_blk1 = form.frm11_haka_banchi.text;
    row.tblkak_haka_bch = form.frm11_haka_blk2.text;
    row.tblkak_kanaidx = store::kanaIndex(form.frm11_dankak.text);
}

// Marks the entry's deceased in the family; false when he is no member of it.
bool setFamilyFlag(store::Database& database, bool deceased, const store::tbl_kakocho& entry) {
    return store::change(
        database, store::idxkzk_kazoku,
        [&](store::tbl_kazoku& member) {
            member.tblkzk_seishikbn = deceased ? store::codes::deceased : store::codes::living;
        },
        entry.tblkak_no, entry.tblkak_dnknameg, entry.tblkak_zokunameg);
}

void sayMemberMissing(desk::ScreenContext& context, desk::Desk& desk) {
    context.chk_errflg = u"1"_s;
    desk.notify(memberMissing, title);
}

// An entry is changed or deleted under the name it was shown with: memorials and the family row go by that name.
bool nameStands(過去登Form& form, desk::Desk& desk) {
    if (!form.held.isNew() && form.frm11_zoknameg.text == form.held->tblkak_zokunameg)
        return true;
    form.frm11_zoknameg.keyboard = true;
    desk.notify(u"俗名が変更されています。一覧から選び直して下さい"_s, title);
    return false;
}

} // namespace

void beginDeathRegister(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    masters::CMB設定(database, masters::Category::続柄, form.frm11_続柄);
    calendar::CMB年号(database, form.生年);
    calendar::CMB年号(database, form.命日);
    form.held.showNew(desk::householdLabel(context.dnk_no1, context.dnk_no2));
    if (context.dnk_no1 == 0)
        return;
    const QString entryHousehold = context.dnk_nameg;
    if (!context.dnk_handedOver) {
        if (const auto row = store::find(database, store::idxdnk_no, context.dnk_no1, context.dnk_no2))
            context.publishHousehold(desk::HouseholdBlock::of(*row));
    }
    fillFamilyLists(database, form, context);
    fillRegisterList(database, form, context);
    form.frm11_no.text = QString::number(context.dnk_no1);
    form.frm11_dankag.text = context.dnk_nameg;
    form.frm11_dankak.text = context.dnk_namek;
    form.frm11_kankeisha.text = context.dnk_toshug;
    if (context.kak_zokunameg.isEmpty())
        return;
    if (!show(database, form, entryHousehold, context.kak_zokunameg, context, desk))
        return;
    for (qsizetype line = 0; line < form.entryHouseholds.size(); ++line) {
        if (form.entryHouseholds[line] == entryHousehold && form.frm11_kakocho.items[line] == context.kak_zokunameg)
            form.frm11_kakocho.current = static_cast<int>(line);
    }
}

std::optional<desk::AskedRecord> askedEntry(const 過去登Form& form, const desk::ScreenContext& context) {
    return desk::askedPerson(context, context.kak_zokunameg, form.frm11_no.text);
}

void publishShown(const 過去登Form& form, desk::ScreenContext& context) {
    if (form.held)
        context.publishDeceased(form.held.row());
    else
        context.clearDeceased();
}

void takeMember(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    const auto member = store::find(database, store::idxkzk_kazoku, context.dnk_no1, context.dnk_nameg,
                                    form.frm11_kazoku.currentText());
    if (!member) {
        desk.notify(memberMissing, title);
        return;
    }
    form.frm11_no.text = QString::number(context.dnk_no1);
    form.frm11_dankag.text = context.dnk_nameg;
    form.frm11_dankak.text = context.dnk_namek;
    form.frm11_zoknameg.text = member->tblkzk_nameg;
    form.frm11_zoknamek.text = member->tblkzk_namek;
    calendar::showDate(
        form.生年, {member->tblkzk_sei_gname, member->tblkzk_sei_gyy, member->tblkzk_sei_gmm, member->tblkzk_sei_gdd},
        member->tblkzk_sei_ymd);
    form.frm11_kankeisha.text = context.dnk_toshug;
    for (const GraveKind& kind : graveKinds)
        (form.*kind.option).chosen = false;
    form.命日.clear();
    form.frm11_haka_nai.chosen = form.frm11_haka_soto.chosen = false;
    for (desk::Text* box : {&form.frm11_kyounen, &form.frm11_kaimyoug, &form.frm11_kaimyouk, &form.frm11_bikou,
                            &form.frm11_haka_no, &form.frm11_haka_banchi, &form.frm11_haka_blk2})
        box->text.clear();
    fillGraveList(database, form, context);
    form.held.showNew(desk::householdLabel(context.dnk_no1, context.dnk_no2));
    context.clearDeceased();
}

void loadEntry(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    if (!show(database, form, form.entryHouseholds.value(form.frm11_kakocho.current), form.frm11_kakocho.currentText(),
              context, desk))
        form.frm11_kakocho.current = -1;
}

void takeGrave(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const auto& list = form.frm11_haka_abohyo;
    if (list.current < 0)
        return;
    store::Database database;
    const auto grave = store::find(database, store::idxhak_no, list.keys.at(static_cast<std::size_t>(list.current)));
    if (!grave || grave->tblhak_dnk_no != context.dnk_no1 || grave->tblhak_bohyo_mei != list.currentText()) {
        desk.notify(u"お墓の情報が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s, title);
        return;
    }
    form.frm11_haka_no.text = QString::number(grave->tblhak_no);
    form.frm11_haka_banchi.text = grave->tblhak_banchi1;
    form.frm11_haka_blk2.text = grave->tblhak_banchi2;
}

void registerDeath(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    const auto dates = check(database, form, context, desk);
    if (!dates || !desk.ask(u"入力された内容で過去帳の登録をします。内容を確認して下さい。"_s, title))
        return;
    store::tbl_kakocho row;
    row.tblkak_no = context.dnk_no1;
    row.tblkak_dnknameg = form.frm11_dankag.text;
    row.tblkak_dnknamek = form.frm11_dankak.text;
    row.tblkak_zokunameg = form.frm11_zoknameg.text;
    write(row, form, *dates);
    row.tblkak_add_ymd = desk.today();
    bool taken = false;
    bool member = false;
    {
        store::Write write(database);
        taken =
            store::find(database, store::idxkak_kakochou, context.dnk_no1, context.dnk_nameg, form.frm11_zoknameg.text)
                .has_value();
        if (!taken) {
            store::Table(database, store::idxkak_kakochou).insert(row);
            member = setFamilyFlag(database, true, row);
            write.commit();
        }
    }
    if (taken) {
        context.chk_errflg = u"1"_s;
        form.frm11_zoknameg.keyboard = true;
        desk.notify(u"既に過去帳は登録されています。確認して下さい"_s, title);
        return;
    }
    form.held.wrote(row);
    context.publishDeceased(row);
    if (!member) {
        sayMemberMissing(context, desk);
        return;
    }
    desk.notify(u"入力された内容で過去帳は登録されました。"_s, title);
    if (!desk.ask(u"法要等の登録も行いますか？"_s, title))
        return;
    memorials::RegisterSchedule(row, desk);
    desk.notify(u"法要等の登録を終了した。"_s, title);
}

void updateDeath(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    const auto dates = check(database, form, context, desk);
    if (!dates || !nameStands(form, desk) ||
        !desk.ask(u"入力された内容で過去帳を変更します。内容を確認して下さい。"_s, title))
        return;
    if (!desk::change(
            form.held, database, {title, entryMissing}, desk,
            [&](store::tbl_kakocho& row) { write(row, form, *dates); },
            [&] { masters::MST設定(database, masters::Category::続柄, form.frm11_続柄.text); }))
        return;
    context.publishDeceased(form.held.row());
    desk.notify(u"入力された内容で家族は更新されました。"_s, title);
}

void removeDeath(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (!nameStands(form, desk) || !desk.ask(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, title, desk::Preset::no))
        return;
    store::Database database;
    const store::tbl_kakocho entry = form.held.row();
    if (!desk::remove(form.held, database, {title, entryMissing}, desk))
        return;
    // The entry is already deleted: report a failure of one of these and still ask about the other.
    const auto attempt = [&desk](const auto& step) {
        try {
            step();
        } catch (const std::exception& failure) {
            desk.notify(store::explainAfterWrite(failure), title);
        }
    };
    if (desk.ask(u"法要等の情報も削除しますか？"_s, title, desk::Preset::no))
        attempt([&entry] { memorials::DeleteMemorials(entry); });
    if (desk.ask(u"家族登録は元に戻しますか？"_s, title))
        attempt([&] {
            if (!setFamilyFlag(database, false, entry))
                sayMemberMissing(context, desk);
        });
    desk.notify(u"削除処理を終了しました。"_s, title);
    context.forgetDeceased(entry.tblkak_no, entry.tblkak_dnknameg, entry.tblkak_zokunameg);
    context.clearDeceased();
}

void openMemorials(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const auto death = values::readDate(form.命日.western.text);
    if (!death) {
        desk.notify(u"法要記録の照会者を特定して下さい"_s, title);
        return;
    }
    context.nameDeceased(context.dnk_nameg, form.frm11_zoknameg.text);
    context.kak_zokunamek = form.frm11_zoknamek.text;
    context.kak_kaimyoug = form.frm11_kaimyoug.text;
    context.kak_kaimyouk = form.frm11_kaimyouk.text;
    context.kak_mei_ymd = *death;
    context.kak_kyounen = age(form);
    context.kak_bikou = form.frm11_bikou.text;
    context.kak_handedOver = true;
    desk.open(u"法要個"_s);
}

} // namespace family
