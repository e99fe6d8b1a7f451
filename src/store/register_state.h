#pragma once

#include "store/register_identity.h"

#include <QByteArray>
#include <QDateTime>

namespace store {

// Tells whether a register's file holds what it held: the file itself, the counter in its head that rises with every
// transaction written into it, and its write-ahead log.
struct RegisterState {
    RegisterIdentity file;
    QByteArray counter; // empty where there is no file, or none that the engine opens
    qint64 logBytes = -1;
    QDateTime logChanged;
    QByteArray logHead; // its salts among other things
    // A log that was written just now may be written once more without another time or size.
    bool settled = true;

    bool operator==(const RegisterState& other) const {
        return settled && other.settled && file == other.file && counter == other.counter &&
               logBytes == other.logBytes && logChanged == other.logChanged && logHead == other.logHead;
    }
};

// Of the register at this path. Takes no lock and waits for none. May be asked from any thread.
RegisterState registerState(const QString& path);

} // namespace store
