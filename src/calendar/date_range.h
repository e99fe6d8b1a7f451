#pragma once

#include "desk/desk.h"
#include "desk/form.h"

#include <QDate>
#include <QString>

#include <optional>

// The two boxes of a date range. Dates may be typed in Western or era form. A wrong box turns red, takes the keyboard
// and is told under the title; nothing is given then.
namespace calendar {

// The date typed into a range box; nothing when it is none. Opens the register where the era table is needed.
std::optional<QDate> rangeDate(const desk::Text& box);

std::optional<QDate> checkRangeStart(desk::Text& box, const QString& title, desk::Desk& desk);

// The end must not be before the start.
std::optional<QDate> checkRangeEnd(desk::Text& box, QDate start, const QString& title, desk::Desk& desk);

} // namespace calendar
