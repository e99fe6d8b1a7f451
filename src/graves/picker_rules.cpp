#include "graves/picker_rules.h"

#include "graves/grave_record.h"
#include "store/codes.h"
#include "store/table.h"

using namespace Qt::StringLiterals;

namespace graves {

namespace {

using desk::Align;

const QString sectionTitle = u"お墓紐付･区画"_s;
const QString markerTitle = u"お墓紐付･墓標"_s;
const QString nothingFound = u"照会の区画にお墓はありません。登録内容を確認して下さい"_s;

// headers: alignment of the header cells of columns 0 to 6.
std::vector<desk::ListColumn<store::tbl_ohaka>> pickerColumns(const std::array<Align, 7>& headers) {
    using Row = const store::tbl_ohaka&;
    return {
        {u"管理NO"_s, 800, [](Row row) { return QString::number(row.tblhak_no); }, Align::right, headers[0]},
        {u"区画"_s, 1500, [](Row row) { return row.tblhak_banchi1; }, Align::left, headers[1]},
        {u"番地"_s, 800, [](Row row) { return row.tblhak_banchi2; }, Align::left, headers[2]},
        {u"檀家NO"_s, 800, [](Row row) { return QString::number(row.tblhak_dnk_no); }, Align::right, headers[3]},
        {u"区分"_s, 600, [](Row row) { return row.tblhak_dnk_kbn; }, Align::left, headers[4]},
        {u"檀家名"_s, 800, [](Row row) { return row.tblhak_dnk_nameg; }, Align::left, headers[5]},
        {u"墓標名"_s, 2000, [](Row row) { return row.tblhak_bohyo_mei; }, Align::left, headers[6]},
    };
}

// The marker names that sort behind a double quotation mark, which leaves out the empty ones.
bool walkMarkers(const QString& from, const std::function<bool(store::tbl_ohaka)>& take) {
    store::Database database;
    const bool atStart = from.isEmpty();
    store::Selection<store::tbl_ohaka> graves(database,
                                              std::string("WHERE tbl_ohaka.tblhak_bohyo_mei ") +
                                                  (atStart ? ">" : ">=") +
                                                  " ? ORDER BY tbl_ohaka.tblhak_bohyo_mei ASC;",
                                              atStart ? u"\""_s : from);
    bool found = false;
    while (graves.next()) {
        found = true;
        if (!take(graves.row()))
            break;
    }
    return found;
}

template <class Form> void pick(Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (const store::tbl_ohaka* grave = form.list.click(form.frm21_tbl, desk))
        context.hak_himo_no = grave->tblhak_no;
}

} // namespace

紐区画Form::紐区画Form()
    : list({.title = sectionTitle,
            .nothing = nothingFound,
            .columns = pickerColumns(
                {Align::right, Align::left, Align::left, Align::right, Align::left, Align::left, Align::left}),
            .key = placeOf,
            .listed =
                [](const store::tbl_ohaka& grave) {
                    return grave.tblhak_bohyo_kbn == store::codes::vacantGrave ||
                           grave.tblhak_dnk_no == store::codes::noHousehold;
                }},
           {}) {
    list.setUp(frm21_tbl);
}

void openPicker(紐区画Form& form, desk::ScreenContext&, desk::Desk&) {
    store::Database database;
    CMB区画(database, form.frm21_block);
}

void chooseSection(紐区画Form& form, desk::ScreenContext&, desk::Desk& desk) {
    const auto section = sectionChosen(form.frm21_block, sectionTitle, desk);
    if (!section)
        return;
    form.list.setStart(*section);
    form.list.showFirstPage(walkSection, form.frm21_tbl, desk);
}

void nextPage(紐区画Form& form, desk::ScreenContext&, desk::Desk& desk) {
    form.list.nextPage(walkSection, form.frm21_tbl, desk);
}

void previousPage(紐区画Form& form, desk::ScreenContext&, desk::Desk& desk) {
    form.list.previousPage(walkSection, form.frm21_tbl, desk);
}

void clickRow(紐区画Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    pick(form, context, desk);
}

紐墓標Form::紐墓標Form()
    : list({.title = markerTitle,
            .nothing = nothingFound,
            .columns = pickerColumns(
                {Align::right, Align::left, Align::left, Align::right, Align::left, Align::center, Align::left}),
            .key = [](const store::tbl_ohaka& grave) { return grave.tblhak_bohyo_mei; }},
           {}) {
    list.setUp(frm21_tbl);
}

void openPicker(紐墓標Form& form, desk::ScreenContext&, desk::Desk& desk) {
    form.list.showFirstPage(walkMarkers, form.frm21_tbl, desk);
}

void nextPage(紐墓標Form& form, desk::ScreenContext&, desk::Desk& desk) {
    form.list.nextPage(walkMarkers, form.frm21_tbl, desk);
}

void previousPage(紐墓標Form& form, desk::ScreenContext&, desk::Desk& desk) {
    form.list.previousPage(walkMarkers, form.frm21_tbl, desk);
}

void clickRow(紐墓標Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    pick(form, context, desk);
}

void takeGrave(PickerForm& form, desk::Desk& desk) {
    form.taken = true;
    desk.close();
}

void leavePicker(const PickerForm& form, desk::ScreenContext& context) {
    if (!form.taken)
        context.hak_himo_no = 0;
}

} // namespace graves
