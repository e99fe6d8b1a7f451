#pragma once

#include "desk/desk.h"
#include "store/database.h"

#include <cstdint>
#include <optional>

// Two-step issuing of household ("檀家") and grave ("お墓") numbers: propose, and commit once the row is written.
namespace desk {

// The number after the last one issued; makes the kind's counter row (last number 0) when there is none. Shows
// 発番できる番号の上限に達しています under the title and gives nothing when 32767 has been issued. Throws where the
// counter table cannot be read.
std::optional<std::int16_t> ProposeNumber(store::Database& database, Desk& desk, const QString& kind,
                                          const QString& title);

// Stores the number as the kind's last one issued. Shows a message under the title and stores nothing when the counter
// row is gone; true when it was stored.
bool CommitNumber(store::Database& database, Desk& desk, const QString& kind, std::int16_t number,
                  const QString& title);

// Raises the counter to the number when it is lower; makes the counter row when there is none.
void raiseNumber(store::Database& database, const QString& kind, std::int16_t number);

} // namespace desk
