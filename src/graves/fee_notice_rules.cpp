#include "graves/fee_notice_rules.h"

#include "calendar/date_range.h"
#include "calendar/eras.h"
#include "printing/address_label_rules.h"
#include "store/row_rules.h"
#include "store/table.h"
#include "values/dates.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace graves {

namespace {

using printing::LabelMode;

const QString title = u"お墓管理費通知"_s;
const QString nothing = u"管理費通知予定はありません。"_s;

// The columns of the list of graves under this screen's headers.
std::vector<desk::ListColumn<ListedGrave>> columns() {
    auto columns = graveColumns();
    columns[0].header = u"管理番号"_s;
    columns[3].header = u"檀家番号"_s;
    columns[4].twips = 500;
    return columns;
}

desk::TickColumn<ListedGrave> receiptTicks(const std::shared_ptr<ChosenGraves>& chosen) {
    return {u"受領選択"_s,
            [chosen](const ListedGrave& grave) {
                return whyNotReceived(grave).isEmpty() ? std::optional(chosen->contains(grave.tblhak_no))
                                                       : std::nullopt;
            },
            [chosen](const ListedGrave& grave, desk::Desk& desk) {
                if (const QString why = whyNotReceived(grave); !why.isEmpty())
                    desk.inform(why);
                else if (chosen->erase(grave.tblhak_no) == 0)
                    chosen->emplace(grave.tblhak_no, grave);
            }};
}

// What is ticked is what stands on the screen: a row that was read again counts as it is now.
void readAgain(ChosenGraves& chosen, const std::vector<ListedGrave>& page) {
    for (const ListedGrave& grave : page) {
        const auto ticked = chosen.find(grave.tblhak_no);
        if (ticked == chosen.end())
            continue;
        if (whyNotReceived(grave).isEmpty())
            ticked->second = grave;
        else
            chosen.erase(ticked);
    }
}

} // namespace

お墓通Form::お墓通Form(std::shared_ptr<printing::LabelChoice> shared, std::shared_ptr<ChosenGraves> ticked)
    : ListForm({.title = title,
                .nothing = nothing,
                .columns = columns(),
                .ticks = {printing::labelTicks<ListedGrave>(shared), receiptTicks(ticked)},
                .key =
                    [](const ListedGrave& grave) {
                        return BillingKey{grave.tblhak_kanri_nxymd, grave.tblhak_no};
                    },
                .complete = fillEraTexts,
                .shown = [ticked](const std::vector<ListedGrave>& page) { readAgain(*ticked, page); },
                .exists = graveExists,
                .outOfRange = u"有功範囲外を指定しています。選択し直して下さい"_s},
               {}),
      choice(std::move(shared)), chosen(std::move(ticked)) {}

QString お墓通Form::range() const {
    if (owedBefore.isValid())
        return u"未納（次回請求日が%1より前）"_s.arg(values::dateText(owedBefore));
    return values::dateText(from) + u'～' + values::dateText(to);
}

QString お墓通Form::printedRange() const {
    return owedBefore.isValid() && sum_ ? range() + u"　合計 "_s + sumText(*sum_) : range();
}

void お墓通Form::setListed(const Listed& what) {
    static_cast<Listed&>(*this) = what;
    choice->rests =
        owedBefore.isValid()
            ? u"未納のみの一覧では、宛名を印刷できません。『未納のみ』を外すと、期間の宛名を印刷できます。"_s
            : QString();
    list.setStart(beginning());
}

void お墓通Form::click(desk::ScreenContext& context, desk::Desk& desk) {
    ListForm::click(context, desk);
    showChosen();
}

std::string お墓通Form::condition() const {
    const std::string range = "tbl_ohaka.tblhak_kanri_nxymd >= ? and tbl_ohaka.tblhak_kanri_nxymd <= ? ";
    return "WHERE " + (owedBefore.isValid() ? range + "and " + store::paysUpkeep() + ' ' : range);
}

bool お墓通Form::read(const BillingKey& key, const Take& take) const {
    store::Database database;
    // A day's graves stand in the order they were stored in: one that still stands there is found by its number itself.
    const bool stands = store::countRows<store::tbl_ohaka>(database, "WHERE tblhak_no = ? AND tblhak_kanri_nxymd = ?",
                                                           key.grave, key.billing) > 0;
    store::Selection<store::tbl_ohaka> graves(database, condition() + "ORDER BY tbl_ohaka.tblhak_kanri_nxymd ASC;",
                                              std::max(beginning().billing, key.billing), lastListed());
    bool found = false;
    while (graves.next()) {
        const store::tbl_ohaka& grave = graves.row();
        found = found || grave.tblhak_kanri_nxymd > key.billing ||
                (stands ? grave.tblhak_no == key.grave : grave.tblhak_no >= key.grave);
        if (found && !take({graves.row()}))
            break;
    }
    return found;
}

int お墓通Form::total() const {
    if (sum_)
        return static_cast<int>(sum_->graves);
    store::Database database;
    return store::countRows<store::tbl_ohaka>(database, condition(), beginning().billing, lastListed());
}

void お墓通Form::countAnew() {
    ListForm::countAnew();
    sum_.reset();
    summed_ = false;
    showChosen();
}

void お墓通Form::count() {
    summed_ = true;
    try {
        store::Database database;
        SQLite::Statement sum(database.engine(), "SELECT count(*), coalesce(sum(tblhak_kanri_ryokin), 0), "
                                                 "count(*) - count(tblhak_kanri_ryokin) FROM tbl_ohaka " +
                                                     condition());
        store::bindValue(sum, 1, beginning().billing);
        store::bindValue(sum, 2, lastListed());
        sum.executeStep();
        sum_ = {sum.getColumn(0).getInt64(), sum.getColumn(1).getInt64(), sum.getColumn(2).getInt64()};
    } catch (const std::exception&) {
        sum_.reset();
    }
    ListForm::count();
    showChosen();
}

void お墓通Form::showChosen() {
    list.showTicks(frm21_tbl);
    QStringList told;
    if (sum_)
        told << u"合計 "_s + sumText(*sum_);
    else if (summed_ && !list.rows().empty())
        told << u"（合計を読めませんでした）"_s;
    if (!chosen->empty())
        told << u"受領 %1件 %2"_s.arg(chosen->size()).arg(sumText(sumOf(*chosen)));
    合計表示.text = told.join(u'　');
}

BillingKey お墓通Form::firstNotChosen() const {
    BillingKey first = beginning();
    if (!list.rows().empty())
        read(list.key(list.rows().front()), [&](const ListedGrave& grave) {
            if (chosen->contains(grave.tblhak_no))
                return true;
            first = list.key(grave);
            return false;
        });
    return first;
}

void お墓通Form::goOn(desk::Desk& desk) {
    const BillingKey place{list.position().billing, 0};
    if (owedBefore.isValid()) {
        showFrom(place, desk);
        return;
    }
    // The grave opened may have been the last one due: the list then begins anew, or has come to nothing.
    if (!read(place, [](const ListedGrave&) { return false; })) {
        showFirstPage(desk);
        return;
    }
    list.clearTables();
    list.setPosition(place);
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

namespace {

void showOwed(お墓通Form& form, desk::Desk& desk) {
    form.setListed({form.from, form.to, desk.today()});
    form.showFrom(form.beginning(), desk);
    if (form.list.rows().empty())
        desk.notify(u"未納のお墓はありません。"_s, title);
}

void showRange(お墓通Form& form, desk::Desk& desk) {
    const auto from = calendar::checkRangeStart(form.frm21_from, title, desk);
    const auto to = from ? calendar::checkRangeEnd(form.frm21_to, *from, title, desk) : std::nullopt;
    if (!to) {
        form.未納のみ.chosen = form.owedBefore.isValid(); // what is listed stays
        return;
    }
    const bool wasOwed = form.owedBefore.isValid();
    form.setListed({*from, *to, {}});
    if (!wasOwed) {
        form.showFirstPage(desk);
        return;
    }
    // What is owed stands no longer where the range has nothing.
    form.showFrom(form.beginning(), desk);
    if (form.list.rows().empty())
        desk.notify(nothing, title);
}

// All of them or none; gives the graves that are other than they were.
std::vector<desk::Other<store::tbl_ohaka>> write(const std::vector<Receipt>& receipts) {
    store::Database database;
    return desk::rewriteAll(database, receipts);
}

// what: how many they are and what they come to. place: where the list stood.
void offerToTakeBack(お墓通Form& form, const std::vector<Receipt>& receipts, const QString& what,
                     const BillingKey& place, desk::Desk& desk) {
    const auto takeBack = [&form, receipts, what, place, &desk] {
        if (const auto others = write(takenBack(receipts)); !others.empty()) {
            desk.notify(u"受領のあとで変わったお墓があるため、元に戻せません。何も書き込まれていません。\n\n"_s +
                            changesText(others),
                        title);
            return;
        }
        for (const Receipt& receipt : receipts)
            form.chosen->emplace(receipt.from.tblhak_no, receipt.from);
        form.showFrom(place, desk);
        desk.inform(what + u"の受領を元に戻しました"_s);
    };
    desk.offer(what + u"の管理費を受領済みにしました"_s, {{u"元に戻す"_s, u"元に戻す"_s, u'Z', takeBack}});
}

} // namespace

void showFees(お墓通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    const Listed before = form;
    const BillingKey position = form.list.position();
    try {
        (form.未納のみ.chosen ? showOwed : showRange)(form, desk);
    } catch (...) {
        form.setListed(before);
        form.list.setPosition(position);
        form.未納のみ.chosen = before.owedBefore.isValid();
        throw;
    }
    if (form != before)
        form.chosen->clear();
    form.showChosen();
}

void receiveFees(お墓通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    if (form.chosen->empty()) {
        desk.notify(u"受領にする行が選ばれていません。『受領選択』の欄を押して選んで下さい。"_s, title);
        return;
    }
    const QString what = u"%1件、合計 %2"_s.arg(form.chosen->size()).arg(sumText(sumOf(*form.chosen)));
    const auto again = std::ranges::count_if(
        *form.chosen, [&](const auto& grave) { return grave.second.tblhak_kanri_jrymd == desk.today(); });
    QString question = what + u"の管理費を受領済みにしますか？\n受領日を今日にし、次回請求日を一年先に進めます。"_s;
    if (again > 0)
        question += u"\n（うち%1件は、受領日がすでに今日です。）"_s.arg(again);
    if (!desk.ask(question, title, again > 0 ? desk::Preset::no : desk::Preset::yes))
        return;

    const BillingKey place = form.list.rows().empty() ? form.beginning() : form.list.key(form.list.rows().front());
    const BillingKey next = form.firstNotChosen();
    const std::vector<Receipt> receipts = receiptsOf(*form.chosen, desk.today());
    if (const auto others = write(receipts); !others.empty()) {
        for (const auto& grave : others)
            form.chosen->erase(grave.read.tblhak_no);
        form.showFrom(place, desk);
        desk.notify(u"一覧に表示したあとで変わったお墓があるため、受領にできません。何も書き込まれていません。\n\n"_s +
                        changesText(others) + u"\n\n一覧を読み直しました。確かめて、もう一度押して下さい。"_s,
                    title);
        return;
    }
    form.chosen->clear();
    offerToTakeBack(form, receipts, what, place, desk);
    form.showFrom(next, desk);
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
