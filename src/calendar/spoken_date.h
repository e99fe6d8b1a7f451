#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "store/database.h"

#include <QDate>
#include <QString>
#include <QStringView>

#include <optional>

// Dates as they are said or jotted down, typed whole into the era box of a date group.
namespace calendar {

struct SpokenDate {
    QString era; // as the era table has it
    int year = 0;
    QDate date;
};

// Reads 令8.11.20, R8/11/20, れいわ8年11月20日, ㋿8.11.20 (the era by its name, and those since 明治 by its
// first character, its initial or its reading as well), 8.11.20 (the era of today; none where today is absent),
// 20261120 and every date that values::readDate knows. Digits and separators may be full-width or as the input method
// gives them (。 and ・); the first year may be 元. Nothing when the text is no complete date of the calendar or its
// era is not in the table.
std::optional<SpokenDate> readSpoken(store::Database& database, QStringView text, QDate today);

// Where the era box holds such a date, spreads it over the four boxes. True when it did; anything else stays as typed,
// and the Western box as it is.
bool spreadSpoken(store::Database& database, desk::DateGroup& group, QDate today);

// Puts today into the four boxes. Shows the message of 西暦変換 when there is no era.
void enterToday(store::Database& database, desk::DateGroup& group, desk::Desk& desk);

// The date that stands in the four boxes or, spoken, in the era box; nothing where there is none. Shows nothing.
std::optional<QDate> typedDate(store::Database& database, const desk::DateGroup& group, QDate today);

// 月, 火 and so on; empty for an absent date.
QString weekday(QDate date);

// What tells a date apart at a glance: 2026/11/20（金）, of one that is a year and more ago with the full years since,
// as the age of a person born then (満81歳) or as a time (6年前).
QString dateHint(QDate date, QDate today, bool birth);

} // namespace calendar
