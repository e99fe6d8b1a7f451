#pragma once

#include <functional>

namespace bench {

// Runs both procedures in turn, round after round, and prints their median times, the ratio and the limit it should not
// pass. Each procedure does its work once a call; a round makes so many calls. prepare runs before each round of
// either, and does not count.
void compare(
    const char* what, double limit, int rounds, int calls, const std::function<void()>& program,
    const std::function<void()>& byHand, const std::function<void()>& prepare = [] {});

} // namespace bench
