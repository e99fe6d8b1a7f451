#pragma once

#include "graves/fee_receipts.h"
#include "graves/grave_list_rules.h"
#include "printing/label_choice.h"
#include "printing/label_printer.h"
#include "values/dates.h"

#include <QDate>

#include <memory>
#include <optional>
#include <string>

namespace graves {

struct BillingKey {
    QDate billing; // tblhak_kanri_nxymd
    std::int16_t grave = 0;

    bool operator==(const BillingKey&) const = default;
};

struct Listed {
    QDate from; // of the opening or of the last 表示 that passed its checks
    QDate to;
    QDate owedBefore; // not the range is listed but what was due before this day; absent: the range

    bool operator==(const Listed&) const = default;
};

struct お墓通Form : desk::ListForm<ListedGrave, BillingKey>, Listed {
    desk::Text frm21_from;
    desk::Text frm21_to;
    desk::Check 未納のみ;
    std::shared_ptr<printing::LabelChoice> choice;
    std::shared_ptr<ChosenGraves> chosen; // ticked for 受領

    お墓通Form() : お墓通Form(std::make_shared<printing::LabelChoice>(), std::make_shared<ChosenGraves>()) {}
    QString range() const override;
    QString printedRange() const override;
    void click(desk::ScreenContext& context, desk::Desk& desk) override;
    void goOn(desk::Desk& desk) override;
    bool sumsUp() const override { return true; }
    bool isCounted() const override { return summed_ && ListForm::isCounted(); }
    void count() override;

    // What is listed from now on; nothing is shown yet.
    void setListed(const Listed& what);
    // Where the list begins.
    BillingKey beginning() const { return {owedBefore.isValid() ? QDate(values::firstYear, 1, 1) : from, 0}; }
    // The first row from the page's first one on that is not chosen for 受領; the list's beginning where there is none.
    BillingKey firstNotChosen() const;
    // Shows ticks and sums as they are now.
    void showChosen();

  private:
    お墓通Form(std::shared_ptr<printing::LabelChoice> shared, std::shared_ptr<ChosenGraves> ticked);

    std::string condition() const;
    QDate lastListed() const { return owedBefore.isValid() ? owedBefore.addDays(-1) : to; }

    std::optional<FeeSum> sum_; // of the whole list; absent where it could not be read
    bool summed_ = true;        // nothing is listed yet

  protected:
    bool read(const BillingKey& key, const Take& take) const override;
    int total() const override;
    void countAnew() override;
};

// The operations of the management-fee notices: graves by next billing date. Messages bear the title "お墓管理費通知".
void beginFeeNotices(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
void leaveFeesFrom(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
void leaveFeesTo(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 表示, and a turn of 未納のみ: lists the range or, where 未納のみ is chosen, whatever the boxes of the range say, the
// graves whose next billing date lies before today, but for disposed ones and those that no household holds. No label
// is printed from the latter list. What was ticked for 受領 is dropped with another list.
void showFees(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 受領: the graves ticked are received today and billed again a year later, all or none, after a question. A grave that
// is other than it was listed is told, and nothing is written. Offers to put both dates back.
void receiveFees(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
// お墓照会: opens お墓登 modal; afterwards the list goes on from its current billing date and the record is cleared.
void openFeeGrave(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 檀家照会: opens 檀家登 modal; afterwards the list goes on from its current billing date.
void openFeeHousehold(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 宛名設定: opens it; its sheet and start hold until the screen closes.
void setUpFeeLabels(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 通知処理: prints a label for every grave chosen in the range. Marks nothing.
void printFeeLabels(お墓通Form& form, printing::LabelPrinter& printer, desk::Desk& desk);
void previewFeeLabels(const お墓通Form& form, printing::LabelPrinter& preview, desk::Desk& desk); // 印刷プレビュー

} // namespace graves
