#pragma once

#include "desk/date_help.h"
#include "desk/desk.h"
#include "desk/form.h"
#include "store/database.h"

namespace calendar {

// What the dates of a person's birth are told with besides: his age.
enum class DateOf { birth, anything };

// The help of the calendar for a date group of a screen's form; desk is the screen's.
desk::DateHelp dateHelp(desk::Desk& desk, desk::DateGroup& group, DateOf what = DateOf::anything);

// The register, for what is looked up while somebody types: it does not wait for another program that holds the file.
store::Database impatientDatabase();

} // namespace calendar
