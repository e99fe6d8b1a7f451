#pragma once

#include "memorials/listed_memorial.h"
#include "values/dates.h"

#include <QDate>

namespace memorials {

struct ReservationKey {
    QDate day;
    QString halfDay; // tblhoy_kaiki_ampm
    std::int16_t hour = 0;
    std::optional<MemorialTie> tie = {}; // of a row; without one the first row of its hour is meant

    bool operator==(const ReservationKey&) const = default;
};

struct 法要一Form : desk::ListForm<ListedMemorial, ReservationKey> {
    desk::Text frm02_from;
    desk::Text frm02_to;
    QDate from;
    QDate to;

    法要一Form();
    QString range() const override {
        return values::dateText(std::max(from, list.start().day)) + QStringLiteral("～") + values::dateText(to);
    }
    // The page is filled again from the current position.
    void goOn(desk::Desk& desk) override { refill(desk); }

  protected:
    bool read(const ReservationKey& key, const Take& take) const override;
    int total() const override;
};

// The operations of the reservation book: memorials reserved and not yet held, in a range of reservation dates.
// Messages bear the title "法要 予定".
void beginReservations(法要一Form& form, desk::ScreenContext& context, desk::Desk& desk);
void leaveReservationsFrom(法要一Form& form, desk::ScreenContext& context, desk::Desk& desk);
void leaveReservationsTo(法要一Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 表示: lists the range from its start and forgets the pages seen before.
void showReservations(法要一Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 故人照会: opens 過去登 modal and fills the page again from the current position afterwards.
void openReservationDeceased(法要一Form& form, desk::ScreenContext& context, desk::Desk& desk);
// A double click: opens the service itself, 法要明, modal, and lists the page again afterwards.
void openReservedService(法要一Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 檀家照会: opens 檀家登 modal.
void openReservationHousehold(法要一Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace memorials
