#pragma once

#include "store/database.h"
#include "store/draft.h"

#include <SQLiteCpp/Backup.h>

#include <QDateTime>
#include <QElapsedTimer>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <vector>

// Copies of the register: kept in the folder backup/ beside it, readable by their owner alone. Each is proven before it
// counts as one: the engine finds nothing wrong with the file as it was written, and all that a register needs is
// there.
namespace store {

// The register is at fault and not the copying of it: it cannot be opened, cannot be read, or its copy is not proven.
class RegisterFault : public Error {
  public:
    using Error::Error;
};

enum class BackupKind {
    daily,
    beforeOperation,
    byHand,  // never removed by the program
    replaced // what a restored copy took the place of; never removed by the program, and not proven
};

// A copy of a register in the making: read into memory through the engine's backup interface, part by part; written
// into a draft and proven in a thread of its own, so that no disk and no proof holds up the caller. A register that is
// written to meanwhile is read anew from its beginning; one that another program keeps locked for ten seconds fails the
// copy. Between two calls of advance() the register is not locked.
class Copy {
  public:
    // A proven draft beside the target, for the caller to move. Throws Error, RegisterFault.
    Copy(const QString& source, const QString& target);
    // A copy in the register's backup folder, which is made where it is missing; then removes old ones. A daily copy is
    // dropped where the newest one is of the same contents and there is one of that day. Throws Error, RegisterFault.
    Copy(const QString& registerPath, BackupKind kind, const QDateTime& now);
    // Does the next part of the work, some milliseconds long, or waits so long for the other thread; true while there
    // is more to do. Throws as the constructors do, and SQLite::Exception.
    bool advance(std::chrono::milliseconds patience = {});
    // Leaves no draft.
    ~Copy();
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    int percent() const;
    Draft& draft() { return draft_; }
    // Where the finished copy is kept; empty where it was dropped.
    const QString& path() const { return path_; }

  private:
    enum class Stage { reading, writing, proving, finishing };

    Copy(const QString& source, const std::function<QString()>& target);
    void readPages();
    void write();
    bool startNext();
    bool working(std::chrono::milliseconds patience) const;

    const QString source_;
    std::optional<Database> register_;
    Draft draft_;
    std::function<void()> finish_; // what becomes of the proven draft
    std::optional<SQLite::Database> memory_;
    std::optional<SQLite::Backup> pages_;
    std::optional<SQLite::Database> copy_; // the draft
    Stage stage_ = Stage::reading;
    QElapsedTimer locked_;
    std::atomic<bool> abandoned_ = false;
    std::future<void> work_; // of the other thread; what it uses is nobody else's as long as it lasts
    QString path_;
};

struct Backup {
    QString path;
    BackupKind kind;
    QDateTime made;       // by the clock of that time, which may have been wrong
    int number = 0;       // counts all copies of a register, whatever the clock says; 0 in older names
    bool monthly = false; // a daily one that is kept for its month
};

// Why it was made, as the user reads it.
QString reasonText(const Backup& backup);
// Looked over before it counted as a copy.
bool isProven(const Backup& backup);

QString backupFolder(const QString& registerPath);

// The register's copies, newest first: by their numbers, those without one behind by their time. Empty when there are
// none.
std::vector<Backup> backupsOf(const QString& registerPath);

// Removes the copies that are no longer kept: all but the newest 14 daily ones, the last daily one of each of the 14
// newest days, the first one of each of the 12 newest months, the newest 10 before an operation, and the one just made.
// Drafts that were left behind an hour ago go, too.
void removeOldBackups(const QString& registerPath, const QString& justMade);

// Copies the register into its backup folder and removes old copies; gives the copy's path, on the disk. step is called
// after each part with the percent done; its false stops the run: nothing is given and no copy made. Throws as Copy
// does.
std::optional<QString> makeBackup(
    const QString& registerPath, BackupKind kind, const QDateTime& now,
    const std::function<bool(int)>& step = [](int) { return true; });

// Puts a copy in the register's place, proven like any copy. What was there, whatever it is, goes into the backup
// folder first, journals included; its path is given, empty where no register was there. From before that until the
// copy is in place nobody can write to the register: what another program saves is in the kept file, or is refused.
// Interrupted at any point, the register is the old one or the new one. Throws Error when the file is no register, is
// damaged or is the present one, and when another program is using the present one. step is called while the file is
// copied and proven, with the percent done.
QString restore(
    const QString& file, const QString& registerPath, const QDateTime& now,
    const std::function<void(int)>& step = [](int) {});

} // namespace store
