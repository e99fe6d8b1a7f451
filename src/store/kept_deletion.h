#pragma once

#include "store/records.h"

#include <QDateTime>
#include <QString>

#include <vector>

// What deletions took, each in a small file of the register's own layout in the folder backup/deleted/, readable by
// its owner alone. It is written before the deletion is committed: one whose deletion did not come about holds rows
// that stand in the register, and bringing those back does nothing. The newest 200 are kept, for 90 days.
namespace store {

struct KeptDeletion {
    QString path;
    QDateTime made;
    int number = 0; // counts a register's deletions, whatever the clock says
    QString what;   // 削除, 抹消, 廃棄
    QString label;  // of what was deleted, as the user knows it; empty where the file cannot be read
};

QString deletionFolder(const QString& registerPath);

// Newest first. Empty when there are none.
std::vector<KeptDeletion> deletionsOf(const QString& registerPath);

// Writes what a deletion takes into a file of its own or, where a path is given, in place of what was kept there
// before; it is on the disk when this returns. Gives its path. Removes old ones. Throws Error where it cannot be kept
// whole.
QString keepDeletion(const QString& registerPath, const Records& records, const QString& what, const QString& label,
                     const QDateTime& now, const QString& replacing = {});

// What a file holds that was opened asDeletion.
Records takenBy(Database& deletion);

// A file that cannot be removed is one too many and no loss: the next run tries again.
void removeOldDeletions(const QString& registerPath, const QDateTime& now, const QString& justMade = {});

} // namespace store
