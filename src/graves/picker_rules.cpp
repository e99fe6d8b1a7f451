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

// The marker names that are listed sort behind it, which leaves out the empty ones.
const QString beforeMarkers = u"\""_s;

} // namespace

紐区画Form::紐区画Form()
    : PickerList({.title = sectionTitle,
                  .nothing = nothingFound,
                  .columns = pickerColumns(
                      {Align::right, Align::left, Align::left, Align::right, Align::left, Align::left, Align::left}),
                  .key = placeOf,
                  .listed =
                      [](const store::tbl_ohaka& grave) {
                          return grave.tblhak_bohyo_kbn == store::codes::vacantGrave ||
                                 grave.tblhak_dnk_no == store::codes::noHousehold;
                      }},
                 {}) {}

bool 紐区画Form::read(const PlaceKey& from, const Take& take) const {
    return walkSection(from, take);
}

int 紐区画Form::total() const {
    store::Database database;
    return store::countRows<store::tbl_ohaka>(database,
                                              "WHERE tblhak_banchi1 = ? AND tblhak_banchi2 >= '' "
                                              "AND (tblhak_bohyo_kbn = ? OR tblhak_dnk_no = ?)",
                                              list.start().section, store::codes::vacantGrave,
                                              store::codes::noHousehold);
}

void beginPicker(紐区画Form& form, desk::ScreenContext&, desk::Desk&) {
    store::Database database;
    CMB区画(database, form.frm21_block);
}

void chooseSection(紐区画Form& form, desk::ScreenContext&, desk::Desk& desk) {
    const auto section = sectionChosen(form.frm21_block, sectionTitle, desk);
    if (!section)
        return;
    form.list.setStart(*section);
    form.showFirstPage(desk);
}

紐墓標Form::紐墓標Form()
    : PickerList({.title = markerTitle,
                  .nothing = nothingFound,
                  .columns = pickerColumns(
                      {Align::right, Align::left, Align::left, Align::right, Align::left, Align::center, Align::left}),
                  .key =
                      [](const store::tbl_ohaka& grave) {
                          return MarkerKey{grave.tblhak_bohyo_mei, grave.tblhak_no};
                      },
                  .place = [](const MarkerKey& key) { return MarkerKey{key.name}; }},
                 {}) {}

bool 紐墓標Form::read(const MarkerKey& from, const Take& take) const {
    const bool atStart = from.name.isEmpty();
    store::Database database;
    store::Selection<store::tbl_ohaka> graves(
        database,
        std::string("WHERE tbl_ohaka.tblhak_bohyo_mei ") + (atStart ? ">" : ">=") +
            " ? ORDER BY tbl_ohaka.tblhak_bohyo_mei ASC, tbl_ohaka.tblhak_no ASC;",
        atStart ? beforeMarkers : from.name);
    bool found = false;
    while (graves.next()) {
        const store::tbl_ohaka& grave = graves.row();
        found = found || grave.tblhak_bohyo_mei != from.name || grave.tblhak_no >= from.grave;
        if (found && !take(grave))
            break;
    }
    return found;
}

int 紐墓標Form::total() const {
    store::Database database;
    return store::countRows<store::tbl_ohaka>(database, "WHERE tblhak_bohyo_mei > ?", beforeMarkers);
}

void beginPicker(紐墓標Form& form, desk::ScreenContext&, desk::Desk& desk) {
    form.showFirstPage(desk);
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
