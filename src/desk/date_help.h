#pragma once

#include <QString>

#include <functional>

namespace desk {

// What a date group on a screen asks of the calendar.
struct DateHelp {
    // Spreads a date that stands whole in the era box over the four boxes of the form; true when it did.
    std::function<bool()> spread;
    // Puts today into the boxes.
    std::function<void()> today;
    // What the boxes' date is, in short: while it is typed.
    std::function<QString()> hint;
};

} // namespace desk
