#pragma once

#include "memorials/listed_memorial.h"
#include "printing/label_printer.h"

#include <QDate>

namespace memorials {

struct NoticeKey {
    QDate scheduled;
    QString deceased;               // secular name
    std::optional<MemorialTie> tie; // of a row; without one the first row of its day and name is meant

    bool operator==(const NoticeKey&) const = default;
};

struct 法要通Form : desk::ListForm<ListedMemorial, NoticeKey> {
    desk::Text frm02_from;
    desk::Text frm02_to;
    QDate from; // the last range that passed the checks
    QDate to;

    法要通Form();

  protected:
    // By day, name and number.
    bool read(const NoticeKey& key, const Take& take) const override;
    int total() const override;
};

// The operations of the memorial notices: memorials of a range of scheduled dates that are neither held, reserved nor
// notified. Messages bear the title "法要通知".
void beginNotices(法要通Form& form, desk::ScreenContext& context, desk::Desk& desk);
void leaveNoticesFrom(法要通Form& form, desk::ScreenContext& context, desk::Desk& desk);
void leaveNoticesTo(法要通Form& form, desk::ScreenContext& context, desk::Desk& desk);
void showNotices(法要通Form& form, desk::ScreenContext& context, desk::Desk& desk);         // 表示
void openNoticeDeceased(法要通Form& form, desk::ScreenContext& context, desk::Desk& desk);  // 故人照会
void openNoticeHousehold(法要通Form& form, desk::ScreenContext& context, desk::Desk& desk); // 檀家照会
// 通知処理: prints the labels of the range and then marks its memorials notified today, all or none. Marks nothing when
// the printer refuses; store::Error tells when the labels are out and the marks could not be written.
void notifyRange(法要通Form& form, printing::LabelPrinter& printer, desk::Desk& desk);
// 印刷プレビュー: shows the same labels, marks nothing.
void previewNotices(const 法要通Form& form, printing::LabelPrinter& preview, desk::Desk& desk);

} // namespace memorials
