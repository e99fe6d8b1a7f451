#include "compare.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace bench {

namespace {

double microseconds(int calls, const std::function<void()>& procedure) {
    const auto start = std::chrono::steady_clock::now();
    for (int call = 0; call < calls; ++call)
        procedure();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count() / calls;
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

void compare(const char* what, double limit, int rounds, int calls, const std::function<void()>& program,
             const std::function<void()>& byHand, const std::function<void()>& prepare) {
    prepare();
    program();
    prepare();
    byHand();
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int round = 0; round < rounds; ++round) {
        prepare();
        ours.push_back(microseconds(calls, program));
        prepare();
        theirs.push_back(microseconds(calls, byHand));
    }
    std::printf("%-58s %10.1f us  by hand %10.1f us  ratio %5.2f  (at most %.2f)\n", what, median(ours), median(theirs),
                median(ours) / median(theirs), limit);
    std::fflush(stdout);
}

} // namespace bench
