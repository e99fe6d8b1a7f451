#pragma once

#include "store/database.h"

#include <SQLiteCpp/Backup.h>

#include <QDateTime>
#include <QElapsedTimer>

#include <functional>
#include <vector>

// Copies of the register: kept in the folder backup/ beside it, readable by their owner alone.
namespace store {

// A copy of a register in the making: through the engine's backup interface into a draft, read back row by row, then
// moved to its name. A register that is written to meanwhile is copied anew from its beginning; one that another
// program keeps locked for ten seconds fails the copy. Between two calls of advance() the register is not locked.
class Copy {
  public:
    // Both throw Error. Nothing may bear the target's name.
    Copy(const QString& source, const QString& target);
    // Does the next part of the work, some milliseconds long; true while there is more to do.
    bool advance();
    // Leaves no draft.
    ~Copy();
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    int percent() const;
    const QString& path() const { return target_; }

  private:
    bool copyPages();
    bool readRows();
    void startReading();

    QString target_;
    QString draft_;
    std::optional<Database> register_;
    std::optional<SQLite::Database> copy_;
    std::optional<SQLite::Backup> pages_;
    std::vector<std::string> unread_; // tables
    std::size_t tables_ = 0;
    std::optional<SQLite::Statement> rows_;
    QElapsedTimer locked_;
};

enum class BackupKind {
    daily,
    beforeOperation,
    byHand,  // never removed by the program
    replaced // what a restored copy took the place of; never removed by the program, and not verified
};

struct Backup {
    QString path;
    BackupKind kind;
    QDateTime made;
    bool monthly = false; // a daily one that is kept for its month
};

QString backupFolder(const QString& registerPath);

// A path in the backup folder, which is made where it is missing, that no file bears: named after register, time and
// kind. Throws Error.
QString newBackupPath(const QString& registerPath, BackupKind kind, const QDateTime& now);

// The register's copies, newest first; empty when there are none.
std::vector<Backup> backupsOf(const QString& registerPath);

// Removes the copies that are no longer kept: all but the newest 14 daily ones, the first daily one of each of the 12
// newest months, the newest 10 before an operation, and the one just made. Drafts that were left behind an hour ago go,
// too.
void removeOldBackups(const QString& registerPath, const QString& justMade);

// Copies the register into its backup folder and removes old copies; gives the copy's path. step is called after each
// part with the percent done; its false stops the run: nothing is given and no copy made. Throws Error.
std::optional<QString> makeBackup(
    const QString& registerPath, BackupKind kind, const QDateTime& now,
    const std::function<bool(int)>& step = [](int) { return true; });

// Puts a copy in the register's place, verified like any copy. What was there, whatever it is, goes into the backup
// folder first, journals included; its path is given, empty where no register was there. Interrupted at any point, the
// register is the old one or the new one. Throws Error when the file is no register, or when another program is writing
// to the present one.
QString restore(const QString& file, const QString& registerPath, const QDateTime& now);

} // namespace store
