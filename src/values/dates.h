#pragma once

#include <QDate>
#include <QString>
#include <QStringView>

#include <optional>

namespace values {

// First and last year that the register can hold.
inline constexpr int firstYear = 1500;
inline constexpr int lastYear = 9999;

// The date of the calendar with these numbers; nothing when there is none or its year is outside the register's range.
[[nodiscard]] std::optional<QDate> makeDate(qint64 year, qint64 month, qint64 day);

// Reads year, month and day separated by "/", "-", "." (all alike) or 年, 月, 日, in half-width or full-width digits.
// The year has four digits. Nothing when the text is no such date of the calendar or its year is out of range.
[[nodiscard]] std::optional<QDate> readDate(QStringView text);

// "yyyy/MM/dd"; empty text for an invalid date.
[[nodiscard]] QString dateText(QDate date);

// The value 0 of the register's date scale, 1899-12-30: "no date" where a date cannot be absent.
[[nodiscard]] QDate zeroDate();

} // namespace values
