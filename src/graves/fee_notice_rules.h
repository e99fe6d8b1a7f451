#pragma once

#include "graves/grave_list_rules.h"
#include "printing/label_printer.h"

#include <QDate>

namespace graves {

struct BillingKey {
    QDate billing; // tblhak_kanri_nxymd
    std::int16_t grave = 0;

    bool operator==(const BillingKey&) const = default;
};

struct お墓通Form {
    desk::Text frm21_from;
    desk::Text frm21_to;
    desk::Grid frm21_tbl;
    QDate from; // of the opening or of the last 表示 that passed its checks
    QDate to;
    desk::PagingList<ListedGrave, BillingKey> list;

    お墓通Form();
};

// The operations of the management-fee notices: graves by next billing date. Messages bear the title "お墓管理費通知".
void openFeeNotices(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
void leaveFeesFrom(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
void leaveFeesTo(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
void showFees(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk); // 表示
void nextFees(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
void previousFees(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
void clickFee(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
// お墓照会: opens お墓登 modal; afterwards the list goes on from its current billing date and the record is cleared.
void openFeeGrave(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 檀家照会: opens 檀家登 modal; afterwards the list goes on from its current billing date.
void openFeeHousehold(お墓通Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 通知処理: prints a label for every grave of the range. Marks nothing.
void printFeeLabels(const お墓通Form& form, printing::LabelPrinter& printer, desk::Desk& desk);
void previewFeeLabels(const お墓通Form& form, printing::LabelPrinter& preview, desk::Desk& desk); // 印刷プレビュー

} // namespace graves
