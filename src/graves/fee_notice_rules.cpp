#include "graves/fee_notice_rules.h"

#include "calendar/date_range.h"
#include "calendar/eras.h"
#include "printing/address_label_rules.h"
#include "store/table.h"
#include "values/dates.h"

using namespace Qt::StringLiterals;

namespace graves {

namespace {

using printing::LabelMode;

const QString title = u"お墓管理費通知"_s;

// The columns of the list of graves under this screen's headers.
std::vector<desk::ListColumn<ListedGrave>> columns() {
    auto columns = graveColumns();
    columns[0].header = u"管理番号"_s;
    columns[3].header = u"檀家番号"_s;
    columns[4].twips = 500;
    return columns;
}

} // namespace

お墓通Form::お墓通Form(std::shared_ptr<printing::LabelChoice> shared)
    : ListForm({.title = title,
                .nothing = u"管理費通知予定はありません。"_s,
                .columns = columns(),
                .ticks = {printing::labelTicks<ListedGrave>(shared)},
                .key =
                    [](const ListedGrave& grave) {
                        return BillingKey{grave.tblhak_kanri_nxymd, grave.tblhak_no};
                    },
                .complete = fillEraTexts,
                .exists = graveExists,
                .outOfRange = u"有功範囲外を指定しています。選択し直して下さい"_s},
               {}),
      choice(std::move(shared)) {}

bool お墓通Form::read(const BillingKey& key, const Take& take) const {
    store::Database database;
    store::Selection<store::tbl_ohaka> graves(
        database,
        "WHERE tbl_ohaka.tblhak_kanri_nxymd >= ? and tbl_ohaka.tblhak_kanri_nxymd <= ? "
        "ORDER BY tbl_ohaka.tblhak_kanri_nxymd ASC;",
        std::max(from, key.billing), to);
    bool found = false;
    while (graves.next()) {
        found = found || graves.row().tblhak_no >= key.grave;
        if (found && !take({graves.row()}))
            break;
    }
    return found;
}

int お墓通Form::total() const {
    store::Database database;
    return store::countRows<store::tbl_ohaka>(database, "WHERE tblhak_kanri_nxymd BETWEEN ? AND ?", from, to);
}

void お墓通Form::goOn(desk::Desk& desk) {
    list.clearTables();
    list.setPosition({list.position().billing, 0});
    refill(desk);
}

void beginFeeNotices(お墓通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    form.from = desk.today();
    form.to = form.from.addYears(1);
    form.frm21_from.text = values::dateText(form.from);
    form.frm21_to.text = values::dateText(form.to);
}

void leaveFeesFrom(お墓通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    calendar::checkRangeStart(form.frm21_from, title, desk);
}

void leaveFeesTo(お墓通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    // The start typed beside it counts, once it is a date.
    const QDate from = calendar::rangeDate(form.frm21_from).value_or(form.from);
    calendar::checkRangeEnd(form.frm21_to, from, title, desk);
}

void showFees(お墓通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    const auto from = calendar::checkRangeStart(form.frm21_from, title, desk);
    if (!from)
        return;
    const auto to = calendar::checkRangeEnd(form.frm21_to, *from, title, desk);
    if (!to)
        return;
    form.from = *from;
    form.to = *to;
    form.list.setStart({form.from, 0});
    form.showFirstPage(desk);
}

void openFeeGrave(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const ListedGrave* grave = form.list.selected();
    if (!grave)
        return;
    context.publishHousehold(desk::HouseholdBlock::numbered(grave->tblhak_dnk_no));
    context.hak_no = grave->tblhak_no;
    desk.open(u"お墓登"_s, desk::Opening::modal, [&form, &context, &desk] {
        form.goOn(desk);
        context.G初期値();
    });
}

void openFeeHousehold(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const ListedGrave* grave = form.list.selected();
    if (!grave)
        return;
    context.publishHousehold(desk::HouseholdBlock::numbered(grave->tblhak_dnk_no));
    form.open(u"檀家登"_s, desk);
}

void setUpFeeLabels(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    printing::openLabelSettings(*form.choice, {}, context, desk, [] {});
}

void printFeeLabels(お墓通Form& form, printing::LabelPrinter& printer, desk::Desk& desk) {
    if (printing::宛名出力(form.from, form.to, LabelMode::fees, printer, desk, *form.choice) ==
        printing::LabelOutcome::handedOver)
        printing::startAnew(*form.choice, desk);
}

void previewFeeLabels(const お墓通Form& form, printing::LabelPrinter& preview, desk::Desk& desk) {
    printing::previewLabels(form.from, form.to, LabelMode::fees, preview, desk, *form.choice);
}

} // namespace graves
