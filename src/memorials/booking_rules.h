#pragma once

#include "memorials/service_form.h"

#include <QDate>

#include <optional>

// What a booking meets on its day, and how one is taken back.
namespace memorials {

// Two services begin too close to one another when less than this lies between them, wherever they are held: one priest
// holds both.
inline constexpr int minutesOfAService = 60;

// The minutes since midnight at which a service begins: 午後1時 and 午後13時 are the same, 12時 is noon in either half.
// Nothing without an hour (0 is none) or when hour or minute are none of a day.
std::optional<int> beginning(bool morning, std::optional<std::int16_t> hour, std::optional<std::int16_t> minute);

// What 予約状況 says of the date and time that stand in the boxes, saved or not: that the day is past, and the other
// services booked for it and not held yet, in order of time, each with its time, household, deceased, name and place,
// those that it overlaps marked; of many only some besides those, and the number of the rest. Empty without a date. own
// is the memorial of the boxes; absent for a new one.
struct BookingState {
    QString text;
    bool warns = false; // of an overlap or of a day that is past
};
BookingState bookingState(store::Database& database, const ServiceForm& form, const store::tbl_hohyo* own, QDate today);

inline const QString extraIsDeleted = QStringLiteral("回忌外の法要です。予約を取り消すときは「削除」を使って下さい");

// Whether the schedule of a deceased brings this memorial; any other is an extra one.
bool isScheduled(const store::tbl_hohyo& memorial);

// 予約取消: after its own question, whose default is No, the memorial is reserved no more: flag 0, no date, 午前, hour
// and minute 0; all else stays. Told and left alone: one that is held, one that is not reserved, and an extra one,
// which goes with 削除. True when it was written; the record held is then the row written, and what was typed besides
// is still unsaved.
bool cancelBooking(store::Database& database, desk::Held<store::tbl_hohyo>& memorial, const QString& title,
                   desk::Desk& desk);

} // namespace memorials
