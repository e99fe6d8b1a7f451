#include "memorials/household_list_rules.h"

#include "store/row_rules.h"
#include "store/table.h"
#include "values/dates.h"

using namespace Qt::StringLiterals;

namespace memorials {

namespace {

const QString title = u"檀家法要一覧"_s;
constexpr std::size_t pagesRemembered = 50;

std::vector<MemorialColumn> columns() {
    return {
        {u"俗名"_s, 1400, [](ListedRow row) { return row.tblhoy_zokunameg; }},
        {u"戒名"_s, 1400, [](ListedRow row) { return row.tblhoy_kaimyog; }},
        {u"回忌名"_s, 1200, [](ListedRow row) { return row.tblhoy_kaiki_mei; }},
        {u"回忌日"_s, 1600, [](ListedRow row) { return row.scheduledEra; }},
        {u"区分"_s, 500,
         [](ListedRow row) { return store::isHeld(row)       ? u"済"_s
                                    : store::isReserved(row) ? u"予"_s
                                                             : QString(); }},
        {u"法要日"_s, 1600, [](ListedRow row) { return row.heldEra; }},
        {u"場所"_s, 1000, [](ListedRow row) { return row.tblhoy_kaiki_basho; }},
        {u"施主"_s, 1400, [](ListedRow row) { return row.tblhoy_kaiki_seshug; }},
        {u"予約日"_s, 1600, [](ListedRow row) { return store::isHeld(row) ? QString() : row.reservedEra; }},
        {u"開始時間"_s, 1000,
         [](ListedRow row) { return !store::isHeld(row) && store::isReserved(row) ? startTimeText(row) : QString(); }},
        {u"備考"_s, 2500, [](ListedRow row) { return row.tblhoy_bikou; }},
        {{}, 0, [](ListedRow row) { return values::dateText(row.tblhoy_kaiki_yymd); }},
    };
}

void complete(std::vector<ListedMemorial>& page, desk::Desk& desk) {
    store::Database database;
    calendar::EraTexts eras(database, desk);
    for (ListedMemorial& row : page)
        fillEraTexts(eras, row);
}

// The record that the detail and the death register are opened with.
bool publishSelected(const 法要檀Form& form, desk::ScreenContext& context) {
    const ListedMemorial* row = form.list.selected();
    if (!row)
        return false;
    context.publishHousehold(desk::HouseholdBlock::numbered(form.household.dnk_no1));
    context.dnk_kbn = desk::categoryText(true);
    context.clearDeceased();
    context.nameDeceased(row->tblhoy_danknameg, row->tblhoy_zokunameg);
    context.hoy_kaiki_yymd = row->tblhoy_kaiki_yymd;
    return true;
}

} // namespace

法要檀Form::法要檀Form()
    : ListForm({.title = title,
                .nothing = u"照会の檀家に法要はありません。登録内容を確認して下さい"_s,
                .columns = columns(),
                .key = [](ListedRow row) { return row.tblhoy_kaiki_yymd; },
                .complete = complete,
                .exists = [](ListedRow row) { return memorialExists(row); },
                .due = isDue,
                .tableSlots = pagesRemembered},
               QDate(values::firstYear, 1, 1)) {}

bool 法要檀Form::read(const QDate& from, const Take& take) const {
    store::Database database;
    store::Selection<store::tbl_hohyo> rows(database,
                                            "INDEXED BY idxhoy_hohyo WHERE tbl_hohyo.tblhoy_no = ? And "
                                            "tbl_hohyo.tblhoy_kaiki_yymd >= ? "
                                            "ORDER BY tbl_hohyo.tblhoy_kaiki_yymd ASC;",
                                            household.dnk_no1, from);
    bool found = false;
    while (rows.next()) {
        found = true;
        if (!take({rows.row()}))
            break;
    }
    return found;
}

void beginHouseholdMemorials(法要檀Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    form.household = context;
    form.household.dnk_handedOver = false;
    if (!context.dnk_handedOver) {
        store::Database database;
        form.household = {};
        form.household.dnk_no1 = context.dnk_no1;
        if (const auto row = store::findHousehold(database, context.dnk_no1))
            form.household = desk::HouseholdBlock::of(*row);
        else
            desk.notify(u"檀家情報を取得出来ません。DBの整合性を確認して下さい"_s, title);
    }
    form.frm21_dankag.text = form.household.dnk_nameg;
    form.frm21_toshug.text = form.household.dnk_toshug;
    form.frm21_toshuk.text = form.household.dnk_toshuk;
    form.frm21_jyusho1.text = form.household.dnk_jyusho1;
    form.frm21_chiku.text = form.household.dnk_chiku;
    form.frm21_bikou.text = form.household.dnk_bikou;
    form.list.setUp(form.frm21_tbl);
    form.showFirstPage(desk);
}

std::optional<desk::AskedRecord> askedMemorials(const desk::ScreenContext& context) {
    if (context.dnk_no1 == 0)
        return {};
    return desk::AskedRecord{desk::keyText(context.dnk_no1), QString::number(context.dnk_no1)};
}

void publishShown(const 法要檀Form& form, desk::ScreenContext& context) {
    context.publishHousehold(form.household);
}

void openHouseholdMemorial(法要檀Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (publishSelected(form, context))
        form.open(u"法要明"_s, desk);
}

void openHouseholdDeceased(法要檀Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (publishSelected(form, context))
        desk.open(u"過去登"_s);
}

} // namespace memorials
