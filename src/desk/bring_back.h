#pragma once

#include "desk/desk.h"
#include "store/kept_deletion.h"
#include "store/records.h"

#include <QStringList>

#include <optional>

// Records brought back into the register, from a copy or from what a deletion took.
namespace desk {

// A row as the user knows it: "家族 321 太郎".
template <class Row> QString labelled(const Row& row) {
    const std::int16_t number = store::numberOf(row);
    return store::kindText(store::kindOf(row)) + u' ' +
           (number == 0 || store::kindOf(row) == store::RecordKind::grave ? QString()
                                                                          : QString::number(number) + u' ') +
           store::nameOf(row);
}

struct BroughtBack {
    QStringList back;                   // what stands in the register again
    QStringList left;                   // what does not, each with the reason
    int same = 0;                       // rows that stood in the register as they were
    std::optional<std::int16_t> number; // the household's new one, where its own was in use
    bool stopped = false;               // by the user: nothing was written
};

// Writes the records as they were, as one write; nothing that stands in the register now is lost:
// - a row whose key is in use stays as it is now, unless it is what the deletion made of the record;
// - a household whose number is another's by now gets the next one of the number table after a question, in all of its
//   rows; what belongs to a household that is gone or another one is left;
// - names of a household that was renamed since are written as they are now: rows are found by them;
// - a grave comes back only where nobody has it, its place is free and nothing but its disposal changed it.
// Throws where the register cannot be written, with nothing written.
BroughtBack bringBack(store::Database& database, const store::Records& records, Desk& desk, const QString& title);

// The same as the undo of a deletion that was kept, which then is kept no longer if all of it is back. Tells what was
// not brought back, else says in the bar what was.
BroughtBack undoDeletion(const QString& path, Desk& desk, const QString& title);

// What the user reads of it; what was left in full, of what is back no more than some names.
QString toldOf(const BroughtBack& result);

} // namespace desk
