#include "store/backup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSet>
#include <QThread>

#include <sqlite3.h>

#include <filesystem>

using namespace Qt::StringLiterals;

namespace store {

namespace {

// Parts of a copy that keep the caller responsive: some milliseconds each.
constexpr int pagesAtOnce = 1024;
constexpr int rowsAtOnce = 4000;
constexpr qint64 lockPatience = 10'000; // ms

constexpr int dailyKept = 14;
constexpr int monthsKept = 12;
constexpr int beforeOperationKept = 10;

const QString timeFormat = u"yyyy-MM-dd-HHmmss"_s;
const QString draftEnding = u".part"_s;

QString wordFor(BackupKind kind) {
    switch (kind) {
    case BackupKind::daily:
        return u"daily"_s;
    case BackupKind::beforeOperation:
        return u"before"_s;
    case BackupKind::byHand:
        return u"manual"_s;
    case BackupKind::replaced:
        break;
    }
    return u"replaced"_s;
}

std::optional<BackupKind> kindFor(const QString& word) {
    for (const auto kind : {BackupKind::daily, BackupKind::beforeOperation, BackupKind::byHand, BackupKind::replaced})
        if (word == wordFor(kind))
            return kind;
    return {};
}

// The first copy of a month stands for it: the oldest daily one.
void markMonths(std::vector<Backup>& newestFirst) {
    QSet<QDate> months;
    for (auto backup = newestFirst.begin(); backup != newestFirst.end(); ++backup) {
        if (backup->kind != BackupKind::daily)
            continue;
        const auto month = [](const Backup& one) { return one.made.date().addDays(1 - one.made.date().day()); };
        if (months.size() == monthsKept && !months.contains(month(*backup)))
            return;
        months.insert(month(*backup));
        backup->monthly = std::none_of(backup + 1, newestFirst.end(), [&](const Backup& older) {
            return older.kind == BackupKind::daily && month(older) == month(*backup);
        });
    }
}

// What a part has written goes to the disk at once: left to the end, a large register would keep the caller waiting for
// seconds. A failure shows there: the closing commit does the same again.
void handToDisk(sqlite3* handle) {
    sqlite3_file* file = nullptr;
    if (sqlite3_db_cacheflush(handle) == SQLITE_OK &&
        sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, &file) == SQLITE_OK && file->pMethods)
        file->pMethods->xSync(file, SQLITE_SYNC_NORMAL);
}

std::filesystem::path systemPath(const QString& path) {
    return std::filesystem::path(path.toStdU16String());
}

// In one step, whether a file bears the new name or not.
void moveInto(const QString& from, const QString& to) {
    std::error_code failure;
    std::filesystem::rename(systemPath(from), systemPath(to), failure);
    if (failure)
        throw Error(0, u"「%1」を「%2」に置けません。書き込みの許可を確認して下さい。\n\n（%3）"_s.arg(
                           QDir::toNativeSeparators(from), QDir::toNativeSeparators(to),
                           QString::fromStdString(failure.message())));
}

// Byte by byte: what is kept may be no database at all.
void keepFile(const QString& from, const QString& to) {
    QFile source(from);
    QSaveFile target(to);
    bool good = source.open(QIODevice::ReadOnly) && target.open(QIODevice::WriteOnly) &&
                target.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    while (good && !source.atEnd()) {
        const QByteArray bytes = source.read(1 << 20);
        good = !bytes.isEmpty() && target.write(bytes) == bytes.size();
    }
    if (!good || !target.commit())
        throw Error(
            0,
            u"今の登録簿「%1」を「%2」に残せません。何も変わっていません。ディスクの空き容量を確認して下さい。\n\n（%3）"_s
                .arg(QDir::toNativeSeparators(from), QDir::toNativeSeparators(to),
                     source.error() != QFileDevice::NoError ? source.errorString() : target.errorString()));
}

// Ends what an earlier program left half done in the present register and makes sure that none is at work. A file that
// cannot be opened has nothing to end; its side files are kept with it.
void settle(const QString& path) {
    try {
        Database database(path, Layouts::olderToo);
        database.engine().exec("PRAGMA journal_mode = DELETE");
        database.engine().exec("BEGIN EXCLUSIVE");
        database.engine().exec("ROLLBACK");
    } catch (const SQLite::Exception& failure) {
        if ((failure.getErrorCode() & 0xff) == SQLITE_BUSY)
            throw Error(SQLITE_BUSY, explain(failure));
    } catch (const Error& failure) {
        if ((failure.code() & 0xff) == SQLITE_BUSY)
            throw;
    }
}

} // namespace

Copy::Copy(const QString& source, const QString& target)
    : target_(target), draft_(target + draftEnding), register_(std::in_place, source, Layouts::olderToo) {
    if (QFileInfo::exists(target))
        throw Error(0, u"「%1」は既にあります。上書きはしません。"_s.arg(QDir::toNativeSeparators(target)));
    // A wait for locks belongs to the caller, between two parts.
    register_->engine().setBusyTimeout(0);
    QFile::remove(draft_);
    makePrivateFile(draft_);
    try {
        copy_.emplace(QFile::encodeName(draft_).constData(), SQLite::OPEN_READWRITE | SQLITE_OPEN_EXRESCODE);
        pages_.emplace(*copy_, register_->engine());
    } catch (...) {
        QFile::remove(draft_);
        throw;
    }
}

Copy::~Copy() {
    rows_.reset();
    pages_.reset();
    copy_.reset();
    QFile::remove(draft_);
    QFile::remove(draft_ + u"-journal"_s);
}

bool Copy::advance() {
    return pages_ ? copyPages() : readRows();
}

int Copy::percent() const {
    if (pages_)
        return pages_->getTotalPageCount() == 0
                   ? 0
                   : 50 - 50 * pages_->getRemainingPageCount() / pages_->getTotalPageCount();
    return tables_ == 0 ? 100 : 100 - static_cast<int>(50 * unread_.size() / tables_);
}

bool Copy::copyPages() {
    const int result = pages_->executeStep(pagesAtOnce);
    if (result == SQLITE_BUSY || result == SQLITE_LOCKED) {
        if (!locked_.isValid())
            locked_.start();
        if (locked_.elapsed() > lockPatience)
            throw SQLite::Exception("database is locked", result);
        QThread::msleep(10);
        return true;
    }
    locked_.invalidate();
    if (result != SQLITE_DONE) {
        handToDisk(copy_->getHandle());
        return true;
    }
    pages_.reset();
    register_.reset();
    // A register in the middle of another program's bulk run would hand its write-ahead log's mark on.
    copy_->exec("PRAGMA journal_mode = DELETE");
    startReading();
    return true;
}

// On a new connection: what is verified is the file, not what the writing connection remembers of it.
void Copy::startReading() {
    copy_.reset();
    copy_.emplace(QFile::encodeName(draft_).constData(), SQLite::OPEN_READONLY | SQLITE_OPEN_EXRESCODE);
    if (copy_->execAndGet("PRAGMA application_id").getInt() != applicationId ||
        copy_->execAndGet("PRAGMA page_count").getInt64() * copy_->execAndGet("PRAGMA page_size").getInt64() !=
            QFileInfo(draft_).size())
        throw SQLite::Exception("the copy is not whole", SQLITE_CORRUPT);
    SQLite::Statement tables(*copy_, "SELECT name FROM sqlite_master WHERE type = 'table'");
    while (tables.executeStep())
        unread_.push_back(tables.getColumn(0).getString());
    tables_ = unread_.size();
}

bool Copy::readRows() {
    if (!rows_ && !unread_.empty())
        rows_.emplace(*copy_, "SELECT * FROM \"" + unread_.back() + "\" NOT INDEXED");
    for (int row = 0; rows_ && row < rowsAtOnce; ++row) {
        if (rows_->executeStep()) {
            for (int column = 0; column < rows_->getColumnCount(); ++column)
                static_cast<void>(rows_->getColumn(column).getBytes());
        } else {
            rows_.reset();
            unread_.pop_back();
        }
    }
    if (rows_ || !unread_.empty())
        return true;
    copy_.reset();
    moveInto(draft_, target_);
    return false;
}

QString backupFolder(const QString& registerPath) {
    return QFileInfo(registerPath).absolutePath() + u"/backup"_s;
}

QString newBackupPath(const QString& registerPath, BackupKind kind, const QDateTime& now) {
    const QDir folder(backupFolder(registerPath));
    constexpr auto ownersOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    if (!folder.exists() && !QDir().mkdir(folder.path(), ownersOnly))
        throw Error(0, u"控えの場所「%1」を作れません。書き込みの許可を確認して下さい。"_s.arg(
                           QDir::toNativeSeparators(folder.path())));
    for (QDateTime time = now;; time = time.addSecs(1)) {
        QString path = folder.filePath(u"%1-%2-%3.mdb"_s.arg(QFileInfo(registerPath).completeBaseName(),
                                                             time.toString(timeFormat), wordFor(kind)));
        if (!QFileInfo::exists(path))
            return path;
    }
}

std::vector<Backup> backupsOf(const QString& registerPath) {
    const QRegularExpression pattern(u"^%1-(\\d{4}-\\d\\d-\\d\\d-\\d{6})-([a-z]+)\\.mdb$"_s.arg(
        QRegularExpression::escape(QFileInfo(registerPath).completeBaseName())));
    std::vector<Backup> found;
    for (const QFileInfo& file : QDir(backupFolder(registerPath)).entryInfoList(QDir::Files)) {
        const auto match = pattern.match(file.fileName());
        const auto kind = kindFor(match.captured(2));
        const QDateTime made = QDateTime::fromString(match.captured(1), timeFormat);
        if (kind && made.isValid())
            found.push_back({file.absoluteFilePath(), *kind, made});
    }
    std::sort(found.begin(), found.end(), [](const Backup& one, const Backup& other) {
        return std::tie(one.made, one.path) > std::tie(other.made, other.path);
    });
    markMonths(found);
    return found;
}

// A copy that cannot be removed is one too many and no loss: the next run tries again.
void removeOldBackups(const QString& registerPath, const QString& justMade) {
    int daily = 0;
    int beforeOperation = 0;
    for (const Backup& backup : backupsOf(registerPath)) {
        const bool kept = backup.kind == BackupKind::daily             ? ++daily <= dailyKept || backup.monthly
                          : backup.kind == BackupKind::beforeOperation ? ++beforeOperation <= beforeOperationKept
                                                                       : true;
        if (!kept && backup.path != QFileInfo(justMade).absoluteFilePath())
            QFile::remove(backup.path);
    }
    const QDir folder(backupFolder(registerPath));
    for (const QFileInfo& draft : folder.entryInfoList({u'*' + draftEnding, u'*' + draftEnding + u"-journal"_s}))
        if (draft.lastModified().secsTo(QDateTime::currentDateTime()) > 3600)
            QFile::remove(draft.absoluteFilePath());
}

std::optional<QString> makeBackup(const QString& registerPath, BackupKind kind, const QDateTime& now,
                                  const std::function<bool(int)>& step) {
    Copy copy(registerPath, newBackupPath(registerPath, kind, now));
    while (copy.advance())
        if (!step(copy.percent()))
            return {};
    removeOldBackups(registerPath, copy.path());
    return copy.path();
}

QString restore(const QString& file, const QString& registerPath, const QDateTime& now) {
    const QString draft = registerPath + u".restored"_s;
    QFile::remove(draft);
    Copy copy(file, draft);
    while (copy.advance()) {
    }
    const bool replaces = QFileInfo::exists(registerPath);
    QString kept;
    try {
        if (replaces)
            settle(registerPath);
        QStringList there;
        for (const QString& ending : {QString(), u"-journal"_s, u"-wal"_s, u"-shm"_s})
            if (QFileInfo::exists(registerPath + ending))
                there << ending;
        if (!there.isEmpty())
            kept = newBackupPath(registerPath, BackupKind::replaced, now);
        for (const QString& ending : there)
            keepFile(registerPath + ending, kept + ending);
        // A journal left beside the name would be played into the restored file, also where the register is gone.
        for (const QString& ending : there)
            if (!ending.isEmpty() && !QFile::remove(registerPath + ending))
                throw Error(0, u"「%1」を取り除けません。書き込みの許可を確認して下さい。"_s.arg(
                                   QDir::toNativeSeparators(registerPath + ending)));
        moveInto(draft, registerPath);
    } catch (...) {
        QFile::remove(draft);
        throw;
    }
    return replaces ? kept : QString();
}

} // namespace store
