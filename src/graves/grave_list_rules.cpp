#include "graves/grave_list_rules.h"

#include "calendar/eras.h"
#include "store/row_rules.h"
#include "store/table.h"
#include "values/numbers.h"

using namespace Qt::StringLiterals;

namespace graves {

namespace {

const QString title = u"お墓一覧"_s;
constexpr int sectionsOffered = 100;

} // namespace

void CMB区画(store::Database& database, desk::Combo& list) {
    list.text.clear();
    list.items.clear();
    SQLite::Statement sections(database.engine(), "SELECT DISTINCT tblhak_banchi1 FROM tbl_ohaka "
                                                  "WHERE tblhak_banchi1 > '' ORDER BY tblhak_banchi1 LIMIT ?");
    sections.bind(1, sectionsOffered);
    while (sections.executeStep())
        list.items.append(QString::fromUtf8(sections.getColumn(0).getText()));
}

PlaceKey placeOf(const store::tbl_ohaka& grave) {
    return {grave.tblhak_banchi1, grave.tblhak_banchi2};
}

bool walkSection(const PlaceKey& from, const std::function<bool(const store::tbl_ohaka&)>& take) {
    store::Database database;
    store::Selection<store::tbl_ohaka> graves(database,
                                              "WHERE tbl_ohaka.tblhak_banchi1 = ? AND tbl_ohaka.tblhak_banchi2 >= ? "
                                              "ORDER BY tbl_ohaka.tblhak_banchi2 ASC;",
                                              from.section, from.lot);
    bool found = false;
    while (graves.next()) {
        found = true;
        if (!take(graves.row()))
            break;
    }
    return found;
}

bool listedGraves(const PlaceKey& from, const GraveList::Take& take) {
    return walkSection(from, [&](const store::tbl_ohaka& grave) { return take(ListedGrave{grave, {}, {}, {}}); });
}

std::optional<PlaceKey> sectionChosen(const desk::Combo& block, const QString& title, desk::Desk& desk) {
    if (block.text.isEmpty()) {
        desk.notify(u"照会する区画を入力して下さい"_s, title);
        return {};
    }
    return PlaceKey{block.text, u""_s};
}

std::vector<desk::ListColumn<ListedGrave>> graveColumns() {
    using desk::Align;
    using Row = const ListedGrave&;
    return {
        {u"管理NO"_s, 800, [](Row row) { return QString::number(row.tblhak_no); }, Align::right, Align::right},
        {u"区画"_s, 1200, [](Row row) { return row.tblhak_banchi1; }},
        {u"番地"_s, 800, [](Row row) { return row.tblhak_banchi2; }},
        {u"檀家NO"_s, 800, [](Row row) { return row.tblhak_dnk_no ? QString::number(row.tblhak_dnk_no) : QString(); },
         Align::right, Align::right},
        {u"区分"_s, 600, [](Row row) { return row.tblhak_dnk_kbn; }},
        {u"檀家名"_s, 800, [](Row row) { return row.tblhak_dnk_nameg; }},
        {u"墓標名"_s, 2000, [](Row row) { return row.tblhak_bohyo_mei; }},
        {u"使用開始日"_s, 1600, [](Row row) { return row.startEra; }},
        {u"使用料"_s, 800, [](Row row) { return values::shownMoney(row.tblhak_shiyo_ryokin); }, Align::right,
         Align::right},
        {u"管理費請求日"_s, 1600, [](Row row) { return row.billingEra; }},
        {u"管理費"_s, 800, [](Row row) { return values::shownMoney(row.tblhak_kanri_ryokin); }, Align::right,
         Align::right},
        {u"廃棄日"_s, 1600, [](Row row) { return row.disposalEra; }},
        {u"備考"_s, 2500, [](Row row) { return row.tblhak_biko; }},
    };
}

void fillEraTexts(std::vector<ListedGrave>& page, desk::Desk& desk) {
    store::Database database;
    calendar::EraTexts eras(database, desk);
    for (ListedGrave& grave : page) {
        grave.startEra = eras.of(grave.tblhak_shiyo_stymd);
        grave.billingEra = eras.of(grave.tblhak_kanri_nxymd);
        if (store::isDisposed(grave))
            grave.disposalEra = eras.of(grave.tblhak_haiki_ymd);
    }
}

bool graveExists(const store::tbl_ohaka& grave) {
    store::Database database;
    return store::find(database, store::idxhak_no, grave.tblhak_no).has_value();
}

お墓一Form::お墓一Form()
    : ListForm({.title = title,
                .nothing = u"照会の区画にお墓はありません。登録内容を確認して下さい"_s,
                .columns = graveColumns(),
                .key = placeOf,
                .complete = fillEraTexts,
                .exists = graveExists},
               {}) {}

bool お墓一Form::read(const PlaceKey& from, const Take& take) const {
    return listedGraves(from, take);
}

int お墓一Form::total() const {
    store::Database database;
    return store::countRows<store::tbl_ohaka>(database, "WHERE tblhak_banchi1 = ? AND tblhak_banchi2 >= ''",
                                              list.start().section);
}

void beginGraveList(お墓一Form& form, desk::ScreenContext&, desk::Desk&) {
    store::Database database;
    CMB区画(database, form.frm21_block);
}

void chooseSection(お墓一Form& form, desk::ScreenContext&, desk::Desk& desk) {
    const auto section = sectionChosen(form.frm21_block, title, desk);
    if (!section)
        return;
    form.list.setStart(*section);
    form.showFirstPage(desk);
}

void openGrave(お墓一Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const ListedGrave* grave = form.list.selected();
    if (!grave)
        return;
    context.G初期値();
    context.publishHousehold(grave->tblhak_dnk_no);
    context.hak_no = grave->tblhak_no;
    form.open(grave->tblhak_dnk_no < 1 ? u"お墓新"_s : u"お墓登"_s, desk);
}

void openHousehold(お墓一Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const ListedGrave* grave = form.list.selected();
    if (!grave)
        return;
    if (grave->tblhak_dnk_no < 1) {
        desk.notify(u"お墓と檀家さんの紐付けができていません"_s, title);
        return;
    }
    context.G初期値();
    context.publishHousehold(grave->tblhak_dnk_no);
    form.open(u"檀家登"_s, desk);
}

} // namespace graves
