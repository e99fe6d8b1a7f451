#pragma once

#include "store/upgrade.h"

#include <QString>

// Steps of the tests' own, which lead to the program's layout: a column, an index, a table with a row.
extern const store::UpgradeSteps olderSteps;

// Turns a register into one that lacks so many of the steps.
void makeOlder(const QString& path, int missing);
