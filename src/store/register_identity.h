#pragma once

#include <QDateTime>
#include <QString>

namespace store {

// Tells a register's file from another one that has taken its name: a restored copy, say. Changes of its contents leave
// it as it is.
struct RegisterIdentity {
    quint64 device = 0; // 0 with number where the system does not number its files
    quint64 number = 0;
    QDateTime made;

    bool operator==(const RegisterIdentity&) const = default;
};

// Of the register that operations open, or of the file at a path; empty where there is none.
RegisterIdentity registerIdentity();
RegisterIdentity registerIdentity(const QString& path);

} // namespace store
