#pragma once

#include "store/database.h"

#include <QDateTime>
#include <QStringList>

#include <vector>

// Layouts move on: each by one SQL file of data/upgrades/, run by hoshiren-db and by the start from the desktop.
namespace store {

// SQL, one text a step in their order; the last one leads to the newest layout. The first line of each is a comment
// that says in Japanese what it does.
using UpgradeSteps = std::vector<const char*>;
const UpgradeSteps& upgradeSteps();

struct Upgrade {
    int from; // the layout that was found; the newest when there was nothing to do
    QString copy;
    QStringList done; // what each step did
};

// Whether the file is a register of an older layout. False also for what is no register or cannot be opened.
bool isOlder(const QString& path);

// Brings a register to the newest layout: copies it into its backup folder first, runs the steps that it lacks in one
// write and looks the result over. Throws Error when the register is newer or has no step that leads on from it, when
// it cannot be copied, when a step fails or the result is not the newest layout; the register is then as it was.
Upgrade upgradeRegister(const QString& path, const QDateTime& now, const UpgradeSteps& steps = upgradeSteps());

// The same with a file of the program's own that nobody else knows yet: no copy is made, and what is left after a
// failure is worth nothing.
void upgradeDraft(const QString& path, const UpgradeSteps& steps = upgradeSteps());

} // namespace store
