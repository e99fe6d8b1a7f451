#pragma once

// A layer between the engine and its files that can fail. Installed once, it serves every connection of the process.
namespace faults {

void installFaultyFiles();

// From now on the nth write, sync or truncation of a file (1: the next one) fails; with it all later ones, or it alone.
// 0: none fails.
void failAt(int nth, bool andAllLater);

// Whether the failure has come to pass since failAt().
bool failed();

} // namespace faults
