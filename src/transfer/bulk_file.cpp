#include "transfer/bulk_file.h"

#include "store/backup.h"

#include <QDir>
#include <QFileInfo>

#include <filesystem>

using namespace Qt::StringLiterals;

namespace transfer {

namespace {

constexpr qsizetype bufferSize = qsizetype{256} * 1024;

// The file that is written when the path is: a link stays what it is.
QString written(const QString& path) {
    const QFileInfo info(path);
    if (info.exists())
        return info.canonicalFilePath();
    return info.isSymLink() ? info.symLinkTarget() : info.absoluteFilePath();
}

// The path with its folder's links and other spellings resolved; for a file that exists, its own links too.
QString resolved(const QString& path) {
    const QFileInfo end(written(path));
    return QFileInfo(end.absolutePath()).canonicalFilePath() + u'/' + end.fileName();
}

std::filesystem::path systemPath(const QString& path) {
    return std::filesystem::path(path.toStdU16String());
}

// A file that the program writes has to be its owner's alone. Where the place keeps no permissions, nothing is written.
// sentence: how it begins, with %1 for the file's name.
void requirePrivate([[maybe_unused]] const store::Draft& draft, [[maybe_unused]] const QString& sentence,
                    [[maybe_unused]] const QString& path) {
#ifdef Q_OS_UNIX
    constexpr auto others = std::filesystem::perms::group_all | std::filesystem::perms::others_all;
    if ((std::filesystem::status(systemPath(draft.path())).permissions() & others) != std::filesystem::perms::none)
        throw FileError(
            sentence +
                u"を自分だけが読めるファイルにできません。何も書き込まれていません。USB メモリーなどには直接出力できません。パソコンの中のフォルダーに出力し、そこから写して下さい。"_s,
            path, u"ファイルの許可を変えられない場所です"_s);
#endif
}

} // namespace

FileError::FileError(const QString& sentence, const QString& path, const QString& systemWords)
    : store::Error(0, sentence.arg(QDir::toNativeSeparators(path)) + u"\n\n（"_s + systemWords + u'）') {}

void openInput(QFile& file) {
    const QString odd = store::notAFile(file.fileName());
    if (!odd.isEmpty() || !file.open(QIODevice::ReadOnly))
        throw FileError(u"入力ファイル「%1」を読めません。ファイル名を確認して下さい。"_s, file.fileName(),
                        odd.isEmpty() ? file.errorString() : odd);
}

ExportFile::ExportFile(const QString& path) : path_(path) {
    if (const QString odd = store::notAFile(path); !odd.isEmpty())
        fail(odd);
    const QString target = written(path);
    if (QFileInfo::exists(target) && !QFileInfo(target).isWritable())
        fail(u"書き込みが許可されていません"_s);
    try {
        draft_.emplace(target);
    } catch (const store::DraftError& failure) {
        fail(failure.systemWords());
    }
    requirePrivate(*draft_, u"出力ファイル「%1」"_s, path);
    file_.setFileName(draft_->path());
    if (!file_.open(QIODevice::WriteOnly | QIODevice::ExistingOnly))
        fail(file_.errorString());
}

Altered ExportFile::write(std::span<const QString> fields) {
    const Altered altered = appendRecord(bytes_, fields);
    if (bytes_.size() >= bufferSize) {
        if (file_.write(bytes_) != bytes_.size())
            fail(file_.errorString());
        bytes_.resize(0);
    }
    return altered;
}

void ExportFile::commit() {
    if (file_.write(bytes_) != bytes_.size() || !file_.flush())
        fail(file_.errorString());
    file_.close();
    try {
        draft_->moveTo(written(path_), store::Existing::replaced);
    } catch (const store::DraftError& failure) {
        fail(failure.systemWords());
    }
}

void ExportFile::fail(const QString& systemWords) const {
    throw FileError(u"出力ファイル「%1」に書き込めません。保存先と空き容量を確認して下さい。"_s, path_, systemWords);
}

ErrorFile::ErrorFile(const QString& path) : path_(path), file_(written(path)) {}

void ErrorFile::check() const {
    if (const QString odd = store::notAFile(path_); !odd.isEmpty())
        fail(odd);
    if (QFile existing(file_.fileName()); existing.exists() && !existing.open(QIODevice::ReadWrite))
        fail(existing.errorString());
    try {
        requirePrivate(store::Draft(file_.fileName()), u"エラー出力ファイル「%1」"_s, path_);
    } catch (const store::DraftError& failure) {
        fail(failure.systemWords());
    }
}

void ErrorFile::open() {
    try {
        store::Draft draft(file_.fileName());
        draft.moveTo(file_.fileName(), store::Existing::replaced);
    } catch (const store::DraftError& failure) {
        fail(failure.systemWords());
    }
    if (!file_.open(QIODevice::WriteOnly | QIODevice::ExistingOnly | QIODevice::Unbuffered))
        fail(file_.errorString());
}

void ErrorFile::write(std::span<const QString> fields) {
    QByteArray bytes;
    appendRecord(bytes, fields);
    if (file_.write(bytes) != bytes.size())
        fail(file_.errorString());
}

void ErrorFile::fail(const QString& systemWords) const {
    throw FileError(u"エラー出力ファイル「%1」に書き込めません。保存先と空き容量を確認して下さい。"_s, path_,
                    systemWords);
}

bool sameFile(const QString& one, const QString& other) {
    std::error_code unknown;
    // Two names of one file on the disk, hard links included.
    if (std::filesystem::equivalent(systemPath(one), systemPath(other), unknown) && !unknown)
        return true;
    return resolved(one) == resolved(other);
}

bool belongsToRegister(const QString& path, const QString& registerPath) {
    for (const QString& suffix : {u""_s, u"-journal"_s, u"-wal"_s, u"-shm"_s})
        if (sameFile(path, registerPath + suffix))
            return true;
    return false;
}

bool inBackupFolder(const QString& path, const QString& registerPath) {
    const auto backups = systemPath(store::backupFolder(registerPath));
    std::error_code unknown;
    for (auto folder = systemPath(resolved(path)).parent_path(); folder.has_relative_path();
         folder = folder.parent_path())
        if (std::filesystem::equivalent(folder, backups, unknown))
            return true;
    return false;
}

} // namespace transfer
