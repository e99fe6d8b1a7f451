#include "store/backup.h"

#include "store/consistency.h"
#include "store/layout.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QRegularExpression>
#include <QSet>
#include <QThread>

#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include <memory>

#include <filesystem>

using namespace Qt::StringLiterals;

namespace store {

namespace {

// A part of a copy that keeps the caller responsive: some milliseconds.
constexpr int pagesAtOnce = 256;
constexpr int lockPatience = 10'000;                     // ms
constexpr std::chrono::milliseconds betweenQuestions{1}; // to a thread that is to stop

constexpr std::chrono::milliseconds partOfWait{20};

constexpr int dailyKept = 14;
constexpr int monthsKept = 12;
constexpr int beforeOperationKept = 10;

const QString timeFormat = u"yyyy-MM-dd-HHmmss"_s;

QString shown(const QString& path) {
    return QDir::toNativeSeparators(path);
}

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

// Of each month keep the oldest daily copy.
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

int primary(const SQLite::Exception& failure) {
    return failure.getErrorCode() & 0xff;
}

RegisterFault damaged(const std::string& words) {
    return {SQLITE_CORRUPT, explain(SQLite::Exception(words, SQLITE_CORRUPT))};
}

// Throws what the work threw, as the register's fault where it is one.
template <class Work> auto blamingRegister(const Work& work) {
    try {
        return work();
    } catch (const SQLite::Exception& failure) {
        const int code = failure.getErrorCode();
        if (primary(failure) == SQLITE_CORRUPT || primary(failure) == SQLITE_NOTADB ||
            primary(failure) == SQLITE_CANTOPEN || code == SQLITE_IOERR_READ || code == SQLITE_IOERR_SHORT_READ)
            throw RegisterFault(code, explain(failure));
        throw;
    }
}

std::optional<Database> openSource(const QString& path) {
    return blamingRegister([&path] {
        try {
            return std::optional<Database>(std::in_place, path, Layouts::olderToo);
        } catch (const Error& failure) {
            throw RegisterFault(failure.code(), failure.message());
        }
    });
}

// The engine takes what is missing of a file's last page for zeros: a file that was cut short while it was copied has
// to be found out by its size. Pages in a write-ahead log need not be in the file.
void refuseCutFile(Database& database, const QString& path) {
    SQLite::Database& engine = database.engine();
    const SQLite::Transaction reading(engine);
    const qint64 size =
        engine.execAndGet("PRAGMA page_count").getInt64() * engine.execAndGet("PRAGMA page_size").getInt64();
    if (QFileInfo(path).size() < size && QFileInfo(path + u"-wal"_s).size() == 0)
        throw damaged("the file is shorter than its pages");
}

// The file as it was written, on a connection of its own.
void prove(SQLite::Database& copy, const QString& path) {
    blamingRegister([&] {
        // While another program is in the middle of a bulk run, the copy inherits the mark that says it uses a
        // write-ahead log.
        copy.exec("PRAGMA journal_mode = DELETE");
        copy.exec("PRAGMA cell_size_check = ON");
        if (copy.execAndGet("PRAGMA application_id").getInt() != applicationId ||
            copy.execAndGet("PRAGMA page_count").getInt64() * copy.execAndGet("PRAGMA page_size").getInt64() !=
                QFileInfo(path).size())
            throw damaged("the copy is not whole");
        if (const std::string found = copy.execAndGet("PRAGMA integrity_check(1)").getString(); found != "ok")
            throw damaged(found);
        // An older layout has nothing to be compared with; the upgrade checks its own result.
        if (copy.execAndGet("PRAGMA user_version").getInt() == layoutVersion) {
            if (const QStringList missing = compareLayout(copy).missing; !missing.isEmpty())
                throw damaged(missing.first().toStdString());
        }
        if (const QStringList unreadable = findUnreadableTexts(copy); !unreadable.isEmpty())
            throw damaged(unreadable.first().toStdString());
    });
}

// The folder of a register's copies, made where it is missing.
QString readyBackupFolder(const QString& registerPath) {
    const QDir folder(backupFolder(registerPath));
    constexpr auto ownersOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    if (!folder.exists()) {
        // Another start may make it at the same moment.
        if (!QDir().mkdir(folder.path(), ownersOnly) && !folder.exists())
            throw Error(0,
                        u"控えの場所「%1」を作れません。書き込みの許可を確認して下さい。"_s.arg(shown(folder.path())));
        syncFolder(QFileInfo(folder.path()).absolutePath());
    }
    return folder.path();
}

// While it lives, no other program numbers, places or removes copies in the folder.
class FolderLock {
  public:
    explicit FolderLock(const QString& registerPath) : lock_(readyBackupFolder(registerPath) + u"/hoshiren.lock"_s) {
        if (lock_.tryLock(lockPatience))
            return;
        throw Error(0, lock_.error() == QLockFile::LockFailedError
                           ? u"控えの場所は他のプログラムが使用中です。しばらく待ってからやり直して下さい。"_s
                           : u"控えの場所「%1」に書き込めません。書き込みの許可と空き容量を確認して下さい。"_s.arg(
                                 shown(backupFolder(registerPath))));
    }

  private:
    QLockFile lock_;
};

// Call while the folder is locked: a file name that no copy has yet, with the next number.
QString newBackupPath(const QString& registerPath, BackupKind kind, const QDateTime& now) {
    const auto backups = backupsOf(registerPath);
    const int number = backups.empty() ? 1 : backups.front().number + 1;
    return backupFolder(registerPath) +
           u"/%1-%2-%3-%4.mdb"_s.arg(QFileInfo(registerPath).completeBaseName(), now.toString(timeFormat))
               .arg(number, 5, 10, QChar(u'0'))
               .arg(wordFor(kind));
}

// Whether two files hold the same pages, whatever the engine's counters in the head of the first one say: they depend
// on how often a file was written.
bool sameContents(const QString& one, const QString& other) {
    constexpr qint64 atOnce = 1 << 20;
    QFile files[] = {QFile(one), QFile(other)};
    if (!files[0].open(QIODevice::ReadOnly) || !files[1].open(QIODevice::ReadOnly) ||
        files[0].size() != files[1].size())
        return false;
    for (bool head = true; !files[0].atEnd(); head = false) {
        QByteArray parts[] = {files[0].read(atOnce), files[1].read(atOnce)};
        // Change counter, schema cookie, the version that the counter is valid for, the engine's version.
        constexpr std::pair<qsizetype, qsizetype> counters[] = {{24, 4}, {40, 4}, {92, 8}};
        if (head)
            for (QByteArray& part : parts)
                for (const auto& [at, length] : counters)
                    part.replace(at, length, QByteArray(length, 0));
        if (parts[0].isEmpty() || parts[0] != parts[1])
            return false;
    }
    return true;
}

// The day alone does not decide, for a clock may stand still, nor the contents alone, for each day has its copy.
bool wantedToday(const QString& draft, const QString& registerPath, QDate today) {
    auto backups = backupsOf(registerPath);
    std::erase_if(backups, [](const Backup& backup) { return backup.kind != BackupKind::daily; });
    return std::none_of(backups.begin(), backups.end(),
                        [today](const Backup& daily) { return daily.made.date() == today; }) ||
           !sameContents(draft, backups.front().path);
}

// Byte by byte: what is kept may be no database at all.
void keepFile(QFile& source, const QString& to) {
    QString words;
    try {
        Draft draft(to);
        QFile target(draft.path());
        bool good = source.isOpen() && target.open(QIODevice::WriteOnly | QIODevice::ExistingOnly);
        while (good && !source.atEnd()) {
            const QByteArray bytes = source.read(1 << 20);
            good = !bytes.isEmpty() && target.write(bytes) == bytes.size();
        }
        if (good && target.flush()) {
            target.close();
            draft.moveTo(to, Existing::refused);
            return;
        }
        words = source.error() != QFileDevice::NoError ? source.errorString() : target.errorString();
    } catch (const DraftError& failure) {
        words = failure.systemWords();
    }
    throw Error(
        0,
        u"今の登録簿「%1」を「%2」に残せません。何も変わっていません。ディスクの空き容量を確認して下さい。\n\n（%3）"_s
            .arg(shown(source.fileName()), shown(to), words));
}

// Ends what an earlier program left half done in the present register, and keeps every other program from it until the
// connection is closed. Nothing where the file is no database or cannot be written: then nobody saves anything there.
std::optional<SQLite::Database> takeHold(const QString& path) {
    constexpr int patience = 2000; // ms
    try {
        std::optional<SQLite::Database> engine(std::in_place, QFile::encodeName(path).constData(),
                                               SQLite::OPEN_READWRITE | SQLITE_OPEN_EXRESCODE, patience);
        engine->exec("PRAGMA journal_mode = DELETE");
        engine->exec("BEGIN EXCLUSIVE");
        return engine;
    } catch (const SQLite::Exception& failure) {
        switch (primary(failure)) {
        case SQLITE_NOTADB:
        case SQLITE_CORRUPT:
            return {};
        case SQLITE_READONLY:
            if (!QFileInfo(path).isWritable())
                return {};
            [[fallthrough]];
        default:
            throw Error(failure.getErrorCode(), explain(failure));
        }
    }
}

// The register's file and what the engine keeps beside it, as far as they are there. Closed only at the end: to close
// any handle of a file ends the locks that this process holds on it.
struct PresentFiles {
    explicit PresentFiles(const QString& path) {
        for (const QString& ending : {QString(), u"-journal"_s, u"-wal"_s, u"-shm"_s}) {
            if (!QFileInfo::exists(path + ending))
                continue;
            requireFile(path + ending);
            files.push_back({ending, std::make_unique<QFile>(path + ending)});
            files.back().second->open(QIODevice::ReadOnly);
        }
    }
    std::vector<std::pair<QString, std::unique_ptr<QFile>>> files;
};

// folderOf: the register by the name that its backup folder goes by.
QString replaceRegister(Draft& draft, const QString& path, const QString& folderOf, const QDateTime& now) {
    const bool replaces = QFileInfo::exists(path);
    std::optional<PresentFiles> present;
    std::optional<SQLite::Database> hold;
    if (replaces)
        hold = takeHold(path);
    present.emplace(path);
    QString kept;
    if (!present->files.empty()) {
        const FolderLock lock(folderOf);
        kept = newBackupPath(folderOf, BackupKind::replaced, now);
        for (const auto& [ending, file] : present->files)
            keepFile(*file, kept + ending);
    }
    // A journal left beside the name would be played into the restored file, also where the register is gone.
    for (const auto& [ending, file] : present->files)
        if (!ending.isEmpty() && !QFile::remove(path + ending))
            throw Error(0, u"「%1」を取り除けません。書き込みの許可を確認して下さい。"_s.arg(shown(path + ending)));
    if (present->files.size() > 1)
        syncFolder(QFileInfo(path).absolutePath());
#ifdef Q_OS_WIN
    // Nothing that is open can be replaced there.
    hold.reset();
    present.reset();
#endif
    draft.moveTo(path, Existing::replaced);
    removeLeftDrafts(QFileInfo(path).absolutePath());
    return replaces ? kept : QString();
}

} // namespace

Copy::Copy(const QString& source, const std::function<QString()>& target)
    : source_(source), register_(openSource(source)), draft_(target()),
      memory_(std::in_place, ":memory:", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE) {
    // A wait for locks belongs to the caller, between two parts.
    register_->engine().setBusyTimeout(0);
}

Copy::Copy(const QString& source, const QString& target) : Copy(source, [&target] { return target; }) {}

Copy::Copy(const QString& registerPath, BackupKind kind, const QDateTime& now)
    : Copy(registerPath, [&registerPath] { return readyBackupFolder(registerPath) + u"/draft"_s; }) {
    finish_ = [this, registerPath, kind, now] {
        const FolderLock lock(registerPath);
        if (kind == BackupKind::daily && !wantedToday(draft_.path(), registerPath, now.date()))
            return;
        const QString path = newBackupPath(registerPath, kind, now);
        draft_.moveTo(path, Existing::refused);
        path_ = path;
        removeOldBackups(registerPath, path);
    };
}

Copy::~Copy() {
    abandoned_ = true;
    // Interrupt repeatedly: the engine forgets an interruption that comes between two statements.
    while (work_.valid() && working(betweenQuestions))
        if (stage_ == Stage::proving)
            sqlite3_interrupt(copy_->getHandle());
}

bool Copy::working(std::chrono::milliseconds patience) const {
    return work_.wait_for(patience) != std::future_status::ready;
}

bool Copy::advance(std::chrono::milliseconds patience) {
    if (stage_ == Stage::reading) {
        readPages();
        return true;
    }
    if (working(patience))
        return true;
    work_.get();
    return startNext();
}

bool Copy::startNext() {
    const auto open = [this] {
        copy_.reset();
        copy_.emplace(QFile::encodeName(draft_.path()).constData(), SQLite::OPEN_READWRITE | SQLITE_OPEN_EXRESCODE);
    };
    switch (stage_) {
    case Stage::reading:
        pages_.reset();
        register_.reset();
        open();
        stage_ = Stage::writing;
        work_ = std::async(std::launch::async, [this] { write(); });
        return true;
    case Stage::writing:
        // Open it again, so that the file itself is checked and not what the writing connection has cached.
        open();
        stage_ = Stage::proving;
        work_ = std::async(std::launch::async, [this] { prove(*copy_, draft_.path()); });
        return true;
    case Stage::proving:
        copy_.reset();
        if (!finish_)
            return false;
        stage_ = Stage::finishing;
        work_ = std::async(std::launch::async, finish_);
        return true;
    case Stage::finishing:
        break;
    }
    return false;
}

int Copy::percent() const {
    switch (stage_) {
    case Stage::reading:
        return pages_ && pages_->getTotalPageCount() > 0
                   ? 50 - 50 * pages_->getRemainingPageCount() / pages_->getTotalPageCount()
                   : 0;
    case Stage::writing:
        return 50;
    case Stage::proving:
        return 75;
    case Stage::finishing:
        break;
    }
    return 100;
}

void Copy::readPages() {
    const int result = blamingRegister([this] {
        try {
            if (!pages_)
                refuseCutFile(*register_, source_);
        } catch (const SQLite::Exception& failure) {
            if (primary(failure) != SQLITE_BUSY)
                throw;
            return SQLITE_BUSY;
        }
        if (!pages_)
            pages_.emplace(*memory_, register_->engine());
        return pages_->executeStep(pagesAtOnce);
    });
    if (result == SQLITE_BUSY || result == SQLITE_LOCKED) {
        if (!locked_.isValid())
            locked_.start();
        if (locked_.elapsed() > lockPatience)
            throw SQLite::Exception("database is locked", result);
        QThread::msleep(10);
        return;
    }
    locked_.invalidate();
    if (result == SQLITE_DONE)
        startNext();
}

void Copy::write() {
    // What fails is thrown away whole, what succeeds is brought to the disk before it is moved.
    copy_->exec("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF");
    {
        SQLite::Backup pages(*copy_, *memory_);
        while (!abandoned_ && pages.executeStep(pagesAtOnce) == SQLITE_OK) {
        }
    }
    memory_.reset();
}

QString backupFolder(const QString& registerPath) {
    return QFileInfo(registerPath).absolutePath() + u"/backup"_s;
}

std::vector<Backup> backupsOf(const QString& registerPath) {
    const QRegularExpression pattern(u"^%1-(\\d{4}-\\d\\d-\\d\\d-\\d{6})(?:-(\\d{5,9}))?-([a-z]+)\\.mdb$"_s.arg(
        QRegularExpression::escape(QFileInfo(registerPath).completeBaseName())));
    std::vector<Backup> found;
    for (const QFileInfo& file : QDir(backupFolder(registerPath)).entryInfoList(QDir::Files)) {
        const auto match = pattern.match(file.fileName());
        const auto kind = kindFor(match.captured(3));
        const QDateTime made = QDateTime::fromString(match.captured(1), timeFormat);
        if (kind && made.isValid())
            found.push_back({file.absoluteFilePath(), *kind, made, match.captured(2).toInt()});
    }
    std::sort(found.begin(), found.end(), [](const Backup& one, const Backup& other) {
        return std::tie(one.number, one.made, one.path) > std::tie(other.number, other.made, other.path);
    });
    markMonths(found);
    return found;
}

// Failing to remove an old copy loses nothing: the next run tries again.
void removeOldBackups(const QString& registerPath, const QString& justMade) {
    int daily = 0;
    int beforeOperation = 0;
    QSet<QDate> days;
    for (const Backup& backup : backupsOf(registerPath)) {
        bool kept = true;
        if (backup.kind == BackupKind::daily) {
            const bool lastOfDay = days.size() < dailyKept && !days.contains(backup.made.date());
            if (lastOfDay)
                days.insert(backup.made.date());
            kept = ++daily <= dailyKept || lastOfDay || backup.monthly;
        } else if (backup.kind == BackupKind::beforeOperation) {
            kept = ++beforeOperation <= beforeOperationKept;
        }
        if (!kept && backup.path != QFileInfo(justMade).absoluteFilePath())
            QFile::remove(backup.path);
    }
    removeLeftDrafts(backupFolder(registerPath));
}

std::optional<QString> makeBackup(const QString& registerPath, BackupKind kind, const QDateTime& now,
                                  const std::function<bool(int)>& step) {
    Copy copy(registerPath, kind, now);
    while (copy.advance(partOfWait))
        if (!step(copy.percent()))
            return {};
    return copy.path();
}

QString restore(const QString& file, const QString& registerPath, const QDateTime& now) {
    // A link stays what it is: the register that it names is replaced.
    const QFileInfo present(registerPath);
    const QString path = present.exists() ? present.canonicalFilePath() : present.absoluteFilePath();
    if (present.exists() && present.canonicalFilePath() == QFileInfo(file).canonicalFilePath())
        throw Error(0, u"「%1」は今の登録簿です。何も変わっていません。戻したい控えのファイルを指定して下さい。"_s.arg(
                           shown(file)));
    requireFile(file);
    requireFile(path);
    try {
        Copy copy(file, path);
        while (copy.advance(partOfWait)) {
        }
        return replaceRegister(copy.draft(), path, registerPath, now);
    } catch (const RegisterFault& fault) {
        // The usual message for a damaged register would tell the user to do what he is doing now.
        if ((fault.code() & 0xff) != SQLITE_CORRUPT)
            throw;
        throw Error(
            fault.code(),
            u"「%1」は壊れています。今の登録簿は変わっていません。hoshiren-db list で別の控えを選んで下さい。%2"_s.arg(
                shown(file), fault.message().mid(fault.message().indexOf(u"\n\n"_s))));
    }
}

} // namespace store
