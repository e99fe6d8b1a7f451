#pragma once

#include "search/texts.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace search {

struct Reading {
    std::shared_ptr<const Texts> texts;
    int unreadable = 0; // household and grave numbers, counted together, whose rows the engine cannot read
};

// Reads a whole register in parts of some milliseconds, each through a connection of its own, so that no lock is held
// in between and nobody waits longer than one part. May run in any thread; touches nothing but the file. Gives nothing
// when told to stop. Throws SQLite::Exception and store::Error; a register that is locked is tried again for some
// seconds.
std::optional<Reading> readRegister(const QString& path, const Texts* former, const std::function<bool()>& stopped);

// Reads what belongs to these owners. Waits no longer than a moment for a lock. Throws SQLite::Exception, store::Error.
std::shared_ptr<const Texts> readOwners(const QString& path, const std::vector<int>& owners);

// Whose a row of the file is; nothing where it is not there, or of a table that is not searched.
std::optional<int> readOwnerOf(const QString& path, const QByteArray& table, qint64 rowid);

} // namespace search
