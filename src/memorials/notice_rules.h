#pragma once

#include "memorials/listed_memorial.h"
#include "printing/label_choice.h"
#include "printing/label_printer.h"
#include "values/dates.h"

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
    std::shared_ptr<printing::LabelChoice> choice;

    法要通Form() : 法要通Form(std::make_shared<printing::LabelChoice>()) {}
    QString range() const override {
        return values::dateText(std::max(from, list.start().scheduled)) + QStringLiteral("～") + values::dateText(to);
    }

  private:
    explicit 法要通Form(std::shared_ptr<printing::LabelChoice> shared);

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
// 宛名設定: opens it; its anniversaries, sheet and start hold until the screen closes.
void setUpNotices(法要通Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 通知処理: prints the labels of the memorials chosen in the range and then marks these notified today, all or none.
// Marks nothing when none is chosen or the printer refuses. Records the run for 通知取消 before anything is printed;
// where that cannot be done, nothing is. store::Error tells when the labels are out and the marks could not be written.
void notifyRange(法要通Form& form, printing::LabelPrinter& printer, desk::Desk& desk);
// 通知取消: takes back, once asked for, the marks of the last run of 通知処理 that are still as it left them: on
// memorials notified on that day and neither reserved nor held.
void takeBackNotices(法要通Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 印刷プレビュー: shows the same labels, marks nothing.
void previewNotices(const 法要通Form& form, printing::LabelPrinter& preview, desk::Desk& desk);

} // namespace memorials
