#pragma once

#include "store/database.h"
#include "ui/layout.h"

namespace calendar {

// What the dates of a person's birth are told with besides: his age.
enum class DateOf { birth, anything };

// The help of the calendar for a date group of the screen's form.
ui::DateHelp dateHelp(ui::Screen& screen, desk::DateGroup& group, DateOf what = DateOf::anything);

// The register, for what is looked up while somebody types: it does not wait for another program that holds the file.
store::Database impatientDatabase();

} // namespace calendar
