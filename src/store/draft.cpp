#include "store/draft.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QUuid>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#else
#include <io.h>
#endif

using namespace Qt::StringLiterals;

namespace store {

namespace {

constexpr qint64 leftAfter = 3600; // seconds

// The draft itself and what the engine may keep beside it.
const QStringList endings{QString(), u"-journal"_s, u"-wal"_s, u"-shm"_s};

std::filesystem::path systemPath(const QString& path) {
    return std::filesystem::path(path.toStdU16String());
}

QString shown(const QString& path) {
    return QDir::toNativeSeparators(path);
}

QString wordsOf(int systemError) {
    return QString::fromStdString(std::generic_category().message(systemError));
}

// A file's contents, or a folder's entries; 0 or the system's error.
int bringToDisk(const QString& path, [[maybe_unused]] bool folder) {
#ifdef Q_OS_UNIX
    const int handle = ::open(QFile::encodeName(path).constData(), (folder ? O_DIRECTORY : O_NOFOLLOW) | O_RDONLY);
    if (handle < 0)
        return errno;
    const int failure = ::fsync(handle) == 0 ? 0 : errno;
    ::close(handle);
    // Some file systems have nothing to bring to the disk for a folder.
    return folder && failure == EINVAL ? 0 : failure;
#else
    if (folder)
        return 0;
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && ::_commit(file.handle()) == 0 ? 0 : errno;
#endif
}

// 0 or the system's error; EEXIST where an existing file is not to be replaced.
int rename(const QString& from, const QString& to, Existing existing) {
#ifdef RENAME_NOREPLACE
    if (existing == Existing::refused) {
        if (::renameat2(AT_FDCWD, QFile::encodeName(from).constData(), AT_FDCWD, QFile::encodeName(to).constData(),
                        RENAME_NOREPLACE) == 0)
            return 0;
        // Not every file system knows the flag.
        if (errno != EINVAL && errno != ENOSYS)
            return errno;
    }
#endif
    std::error_code failure;
    if (existing == Existing::refused &&
        std::filesystem::symlink_status(systemPath(to), failure).type() != std::filesystem::file_type::not_found)
        return EEXIST;
    std::filesystem::rename(systemPath(from), systemPath(to), failure);
    return failure.value();
}

} // namespace

QString notAFile(const QString& path) {
    std::error_code unknown;
    const auto type = std::filesystem::status(systemPath(path), unknown).type();
    switch (type) {
    case std::filesystem::file_type::directory:
        return u"フォルダーです"_s;
    case std::filesystem::file_type::block:
    case std::filesystem::file_type::character:
    case std::filesystem::file_type::fifo:
    case std::filesystem::file_type::socket:
        return u"装置かパイプで、ファイルではありません"_s;
    default:
        return {};
    }
}

void requireFile(const QString& path) {
    if (const QString words = notAFile(path); !words.isEmpty())
        throw Error(0, u"「%1」は使えません。何も変わっていません。ファイル名を確認して下さい。\n\n（%2）"_s.arg(
                           shown(path), words));
}

DraftError::DraftError(const QString& sentence, const QString& systemWords)
    : Error(0, sentence + u"\n\n（"_s + systemWords + u'）'), systemWords_(systemWords) {}

void syncFolder(const QString& folder) {
    if (const int failure = bringToDisk(folder, true))
        throw DraftError(
            u"「%1」の変更をディスクに書き込めたか、確かめられません。ディスクを確認して下さい。"_s.arg(shown(folder)),
            wordsOf(failure));
}

Draft::Draft(const QString& target)
    : path_(QFileInfo(target).absolutePath() + u"/hoshiren-"_s + QUuid::createUuid().toString(QUuid::Id128) +
            u".draft"_s) {
    QFile file(path_);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFileDevice::ReadOwner | QFileDevice::WriteOwner))
        throw DraftError(u"「%1」を作れません。書き込みの許可を確認して下さい。"_s.arg(shown(target)),
                         file.errorString());
}

Draft::~Draft() {
    for (const QString& ending : endings)
        if (!moved_ || !ending.isEmpty())
            QFile::remove(path_ + ending);
}

void Draft::moveTo(const QString& path, Existing existing) {
    if (const int failure = bringToDisk(path_, false))
        throw DraftError(u"「%1」をディスクに書き込めません。ディスクの空き容量を確認して下さい。"_s.arg(shown(path)),
                         wordsOf(failure));
    const int failure = rename(path_, path, existing);
    if (failure == EEXIST && existing == Existing::refused)
        throw DraftError(u"「%1」は既にあります。上書きはしません。"_s.arg(shown(path)), wordsOf(failure));
    if (failure)
        throw DraftError(u"「%1」を置けません。書き込みの許可を確認して下さい。"_s.arg(shown(path)), wordsOf(failure));
    moved_ = true;
    syncFolder(QFileInfo(path).absolutePath());
}

void removeLeftDrafts(const QString& folder) {
    static const QRegularExpression ours(u"^hoshiren-[0-9a-f]{32}\\.draft(-journal|-wal|-shm)?$"_s);
    for (const QFileInfo& file : QDir(folder).entryInfoList({u"hoshiren-*"_s}, QDir::Files))
        if (ours.match(file.fileName()).hasMatch() &&
            file.lastModified().secsTo(QDateTime::currentDateTime()) > leftAfter)
            QFile::remove(file.absoluteFilePath());
}

} // namespace store
