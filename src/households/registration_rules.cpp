#include "households/registration_rules.h"

#include "desk/numbering.h"
#include "households/erasure_rules.h"
#include "masters/master_rules.h"
#include "store/table.h"
#include "values/numbers.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace households {

namespace {

const QString title = u"檀家 登録"_s;
const QString kind = u"檀家"_s;

struct Numbers {
    std::int16_t no1;
    std::int16_t no2;
};

std::optional<Numbers> numbersOf(const 檀家登Form& form) {
    const auto number = [](const QString& text) {
        // A number that names a household is never rounded.
        return text.contains(u'.') || text.contains(u'．') ? std::nullopt : values::readInt16(text);
    };
    const auto no1 = number(form.frm01_no.text);
    const auto no2 = number(form.frm01_eno.text);
    if (!no1 || !no2)
        return {};
    return Numbers{*no1, *no2};
}

void publishNumbers(desk::ScreenContext& context, Numbers numbers) {
    context.publishHousehold(numbers.no1);
    context.dnk_no2 = numbers.no2;
}

// True, with the message, when the boxes do not show these numbers.
bool numbersChanged(const 檀家登Form& form, desk::Desk& desk, std::int16_t no1, std::int16_t no2) {
    const auto numbers = numbersOf(form);
    if (numbers && numbers->no1 == no1 && numbers->no2 == no2)
        return false;
    desk.notify(u"登録NOが変更されています。照会からやり直して下さい"_s, title);
    return true;
}

void listGraves(store::Database& database, 檀家登Form& form, std::int16_t household) {
    for (desk::List* list :
         {&form.frm01_haka_no, &form.frm01_haka_banchi, &form.frm01_haka_banchi2, &form.frm01_haka_bohyo})
        list->clear();
    // Graves without a household bear the number 0, too.
    if (household == 0)
        return;
    store::Selection<store::tbl_ohaka> graves(
        database, "WHERE tbl_ohaka.tblhak_dnk_no = ? ORDER BY tbl_ohaka.tblhak_bohyo_mei ASC", household);
    while (graves.next()) {
        if (graves.row().tblhak_haiki_kbn != 0)
            continue;
        form.frm01_haka_no.items.append(QString::number(graves.row().tblhak_no));
        form.frm01_haka_banchi.items.append(graves.row().tblhak_banchi1);
        form.frm01_haka_banchi2.items.append(graves.row().tblhak_banchi2);
        form.frm01_haka_bohyo.items.append(graves.row().tblhak_bohyo_mei);
    }
}

bool checked(檀家登Form& form, desk::Desk& desk) {
    const auto field = [](desk::Text& box) { return RequiredField{box, !box.text.isEmpty()}; };
    if (ValidateHousehold({field(form.frm01_dankag), field(form.frm01_dankak), field(form.frm01_yubinno),
                           field(form.frm01_jyusho1), field(form.frm01_tel), field(form.frm01_toshug),
                           field(form.frm01_toshuk)}))
        return true;
    desk.notify(householdInvalid, title);
    return false;
}

void showHousehold(檀家登Form& form, const store::tbl_danka& row) {
    form.frm01_dankag.text = row.tbldnk_nameg;
    form.frm01_dankak.text = row.tbldnk_namek;
    form.frm01_dnkkbn1.chosen = row.tbldnk_dnkkbn == categoryText(true);
    form.frm01_dnkkbn2.chosen = !form.frm01_dnkkbn1.chosen;
    form.frm01_toshug.text = row.tbldnk_toshug;
    form.frm01_toshuk.text = row.tbldnk_toshuk;
    form.frm01_yubinno.text = row.tbldnk_yubin;
    form.frm01_jyusho1.text = row.tbldnk_jyusho1;
    form.frm01_jyusho2.text = row.tbldnk_jyusho2;
    form.frm01_tel.text = row.tbldnk_tel;
    form.frm01_fax.text = row.tbldnk_fax;
    form.frm01_地区.text = row.tbldnk_chiku;
    form.frm01_biko.text = row.tbldnk_bikou;
    form.frm01_haka_nai.chosen = row.tbldnk_haka_basho == placeText(true);
    form.frm01_haka_soto.chosen = !form.frm01_haka_nai.chosen;
}

void fillRow(const 檀家登Form& form, store::tbl_danka& row) {
    row.tbldnk_nameg = form.frm01_dankag.text;
    row.tbldnk_namek = form.frm01_dankak.text;
    row.tbldnk_dnkkbn = categoryText(form.frm01_dnkkbn1.chosen);
    row.tbldnk_yubin = form.frm01_yubinno.text;
    row.tbldnk_jyusho1 = form.frm01_jyusho1.text;
    row.tbldnk_jyusho2 = form.frm01_jyusho2.text;
    row.tbldnk_tel = form.frm01_tel.text;
    row.tbldnk_fax = form.frm01_fax.text;
    row.tbldnk_chiku = form.frm01_地区.text;
    row.tbldnk_bikou = form.frm01_biko.text;
    row.tbldnk_kanaidx = store::kanaIndex(form.frm01_dankak.text);
    row.tbldnk_haka_basho = placeText(form.frm01_haka_nai.chosen);
    row.tbldnk_toshug = form.frm01_toshug.text;
    row.tbldnk_toshuk = form.frm01_toshuk.text;
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

} // namespace

QString categoryText(bool parishioner) {
    return parishioner ? u"檀家"_s : u"一般"_s;
}

QString placeText(bool withinGrounds) {
    return withinGrounds ? u"境内"_s : u"境外"_s;
}

bool ValidateHousehold(std::initializer_list<RequiredField> fields) {
    bool good = true;
    for (const RequiredField& field : fields) {
        field.control.colour = field.filled ? desk::Colour::black : desk::Colour::red;
        if (!field.filled && good)
            field.control.moveToFront();
        good = good && field.filled;
    }
    return good;
}

bool PublishHousehold(const 檀家登Form& form, desk::ScreenContext& context) {
    const auto numbers = numbersOf(form);
    if (!numbers)
        return false;
    publishNumbers(context, *numbers);
    context.dnk_nameg = form.frm01_dankag.text;
    context.dnk_namek = form.frm01_dankak.text;
    context.dnk_toshug = form.frm01_toshug.text;
    context.dnk_toshuk = form.frm01_toshuk.text;
    context.dnk_yubin = form.frm01_yubinno.text;
    context.dnk_jyusho1 = form.frm01_jyusho1.text;
    context.dnk_jyusho2 = form.frm01_jyusho2.text;
    context.dnk_tel = form.frm01_tel.text;
    context.dnk_fax = form.frm01_fax.text;
    context.dnk_chiku = form.frm01_地区.text;
    context.dnk_bikou = form.frm01_biko.text;
    context.dnk_kbn = categoryText(form.frm01_dnkkbn1.chosen);
    return true;
}

void openHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    {
        store::Database database;
        masters::CMB設定(database, masters::Category::地区, form.frm01_地区);
    }
    form.frm01_dnkkbn1.chosen = true;
    form.frm01_haka_nai.chosen = true;
    form.frm01_no.text = QString::number(context.dnk_no1);
    form.frm01_eno.text = u"0"_s;
    if (context.dnk_no1 != 0)
        LoadHousehold(form, context, desk);
}

void LoadHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const auto numbers = numbersOf(form);
    if (!numbers) {
        desk.notify(u"登録番号は数字で入力して下さい"_s, title);
        return;
    }
    publishNumbers(context, *numbers);
    store::Database database;
    std::optional<store::tbl_danka> found;
    {
        store::Table households(database, store::idxdnk_no);
        if (households.seek(store::Seek::equal, numbers->no1, numbers->no2))
            found = households.row();
    }
    if (!found) {
        desk.notify(u"指定された檀家番号は登録されていません。確認して下さい"_s, title);
        return;
    }
    showHousehold(form, *found);
    form.shownNo1 = numbers->no1;
    form.shownNo2 = numbers->no2;
    context.dnk_haka_basho = found->tbldnk_haka_basho;
    listGraves(database, form, context.dnk_no1);
}

void RegisterHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    const auto number = proposedNumber(database, desk);
    if (!number)
        return;
    form.frm01_no.text = QString::number(*number);
    form.frm01_eno.text = u"0"_s;
    if (!checked(form, desk) || !desk.ask(u"入力された内容で檀家さんを登録します。内容を確認して下さい。"_s, title))
        return;
    publishNumbers(context, {*number, 0});

    // Row, district and counter belong together: a number stored but not counted would be proposed for ever.
    bool taken = false;
    bool counted = false;
    {
        store::Write write(database);
        store::Table households(database, store::idxdnk_no);
        taken = households.seek(store::Seek::equal, context.dnk_no1, context.dnk_no2);
        if (!taken) {
            store::tbl_danka row;
            row.tbldnk_no1 = context.dnk_no1;
            row.tbldnk_no2 = context.dnk_no2;
            fillRow(form, row);
            row.tbldnk_oyano = std::int16_t{0};
            row.tbldnk_bunkekbn = u"0"_s;
            row.tbldnk_addymd = desk.today();
            households.insert(row);
            masters::MST設定(database, masters::Category::地区, form.frm01_地区.text);
            counted = desk::CommitNumber(database, kind, *number);
            write.commit();
        }
    }
    if (taken) {
        desk.notify(u"指定された檀家番号は既に登録されています"_s, title);
        return;
    }
    if (!counted)
        desk.notify(desk::notCounted, title);
    form.shownNo1 = context.dnk_no1;
    form.shownNo2 = context.dnk_no2;
    listGraves(database, form, context.dnk_no1);
    masters::CMB設定(database, masters::Category::地区, form.frm01_地区);
}

void UpdateHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (numbersChanged(form, desk, form.shownNo1, form.shownNo2) || !checked(form, desk) ||
        !desk.ask(u"入力された内容で檀家さんを変更します。内容を確認して下さい。"_s, title))
        return;
    publishNumbers(context, {form.shownNo1, form.shownNo2});
    store::Database database;
    bool found = false;
    {
        store::Write write(database);
        store::Table households(database, store::idxdnk_no);
        found = households.seek(store::Seek::equal, context.dnk_no1, context.dnk_no2);
        if (found) {
            auto row = households.row();
            fillRow(form, row);
            households.edit(row);
            masters::MST設定(database, masters::Category::地区, form.frm01_地区.text);
            write.commit();
        }
    }
    desk.notify(found ? u"入力された内容で檀家さんは更新されました。"_s
                      : u"指定された檀家番号を読めませんません。DBの整合性を確認して下さい"_s,
                title);
    masters::CMB設定(database, masters::Category::地区, form.frm01_地区);
}

void DeleteHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (numbersChanged(form, desk, form.shownNo1, form.shownNo2) ||
        !desk.ask(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, title))
        return;
    publishNumbers(context, {form.shownNo1, form.shownNo2});
    bool found = false;
    {
        store::Database database;
        store::Table households(database, store::idxdnk_no);
        found = households.seek(store::Seek::equal, context.dnk_no1, context.dnk_no2);
        if (found)
            households.remove();
    }
    desk.notify(found ? u"指定された檀家さんは削除されました。"_s
                      : u"指定された檀家番号を読めませんません。DBの整合性を確認して下さい"_s,
                title);
}

void eraseShownHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (numbersChanged(form, desk, form.shownNo1, form.shownNo2))
        return;
    if (form.shownNo1 < 1) {
        desk.notify(u"檀家を照会してから抹消して下さい"_s, title);
        return;
    }
    if (!desk.ask(u"檀家さんに関する全ての情報を抹消します。内容を確認して下さい。"_s, title) ||
        !PublishHousehold(form, context))
        return;
    EraseHousehold(context, desk);
    store::Database database;
    listGraves(database, form, form.shownNo1);
}

void openGraves(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (numbersChanged(form, desk, form.shownNo1, form.shownNo2) || !PublishHousehold(form, context))
        return;
    desk.open(u"お墓登"_s, desk::Opening::modal, [&form] {
        store::Database database;
        listGraves(database, form, form.shownNo1);
    });
}

void openForHousehold(檀家登Form& form, desk::ScreenContext& context, desk::Desk& desk, const QString& screen) {
    if (!numbersChanged(form, desk, form.shownNo1, form.shownNo2) && PublishHousehold(form, context))
        desk.open(screen);
}

} // namespace households
