#pragma once

#include "graves/grave_list_rules.h"
#include "printing/label_choice.h"
#include "printing/label_printer.h"
#include "values/dates.h"

#include <QDate>

namespace graves {

struct BillingKey {
    QDate billing; // tblhak_kanri_nxymd
    std::int16_t grave = 0;

    bool operator==(const BillingKey&) const = default;
};

struct お墓通Form : desk::ListForm<ListedGrave, BillingKey> {
    desk::Text frm21_from;
    desk::Text frm21_to;
    QDate from; // of the opening or of the last 表示 that passed its checks
    QDate to;
    std::shared_ptr<printing::LabelChoice> choice;

    お墓通Form() : お墓通Form(std::make_shared<printing::LabelChoice>()) {}
    QString range() const override { return values::dateText(from) + QStringLiteral("～") + values::dateText(to); }
    void goOn(desk::Desk& desk) override;

  private:
    explicit お墓通Form(std::shared_ptr<printing::LabelChoice> shared);

  protected:
    bool read(const BillingKey& key, const Take& take) const override;
    int total() const override;
};

// The operations of the management-fee notices: graves by next billing date. Messages bear the title "お墓管理費通知".
void beginFeeNotices(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
void leaveFeesFrom(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
void leaveFeesTo(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
void showFees(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk); // 表示
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
