#include "transfer/bulk_file.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

#include <filesystem>

using namespace Qt::StringLiterals;

namespace transfer {

namespace {

constexpr QFileDevice::Permissions ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
constexpr qsizetype bufferSize = qsizetype{256} * 1024;

// The path with its folder's links and other spellings resolved; for a file that exists, its own links too.
QString resolved(const QString& path) {
    const QFileInfo info(path);
    if (info.exists())
        return info.canonicalFilePath();
    const QString target = info.isSymLink() ? info.symLinkTarget() : path;
    const QFileInfo end(target);
    return QFileInfo(end.absolutePath()).canonicalFilePath() + u'/' + end.fileName();
}

} // namespace

FileError::FileError(const QString& sentence, const QString& path, const QString& systemWords)
    : store::Error(0, sentence.arg(QDir::toNativeSeparators(path)) + u"\n\n（"_s + systemWords + u'）') {}

void openInput(QFile& file) {
    const QFileInfo info(file.fileName());
    if (info.isDir() || !file.open(QIODevice::ReadOnly))
        throw FileError(u"入力ファイル「%1」を読めません。ファイル名を確認して下さい。"_s, file.fileName(),
                        info.isDir() ? u"フォルダーです"_s : file.errorString());
}

ExportFile::ExportFile(const QString& path) : file_(path) {
    if (!file_.open(QIODevice::WriteOnly) || !file_.setPermissions(ownerOnly))
        fail();
}

Altered ExportFile::write(std::span<const QString> fields) {
    const Altered altered = appendRecord(bytes_, fields);
    if (bytes_.size() >= bufferSize) {
        if (file_.write(bytes_) != bytes_.size())
            fail();
        bytes_.resize(0);
    }
    return altered;
}

void ExportFile::commit() {
    if (file_.write(bytes_) != bytes_.size() || !file_.commit())
        fail();
}

void ExportFile::fail() const {
    throw FileError(u"出力ファイル「%1」に書き込めません。保存先と空き容量を確認して下さい。"_s, file_.fileName(),
                    file_.errorString());
}

void ErrorFile::check() const {
    const QFileInfo info(file_);
    if (info.exists()) {
        QFile existing(file_.fileName());
        if (info.isDir() || !existing.open(QIODevice::ReadWrite | QIODevice::ExistingOnly))
            fail(info.isDir() ? u"フォルダーです"_s : existing.errorString());
        return;
    }
    QTemporaryFile beside(info.absolutePath() + u"/hoshiren-XXXXXX"_s);
    if (!beside.open())
        fail(beside.errorString());
}

void ErrorFile::open() {
    if (!file_.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered, ownerOnly) ||
        !file_.setPermissions(ownerOnly))
        fail(file_.errorString());
}

void ErrorFile::write(std::span<const QString> fields) {
    QByteArray bytes;
    appendRecord(bytes, fields);
    if (file_.write(bytes) != bytes.size())
        fail(file_.errorString());
}

void ErrorFile::fail(const QString& systemWords) const {
    throw FileError(u"エラー出力ファイル「%1」に書き込めません。保存先と空き容量を確認して下さい。"_s, file_.fileName(),
                    systemWords);
}

bool sameFile(const QString& one, const QString& other) {
    std::error_code unknown;
    const auto asPath = [](const QString& path) { return std::filesystem::path(path.toStdU16String()); };
    // Two names of one file on the disk, hard links included.
    if (std::filesystem::equivalent(asPath(one), asPath(other), unknown) && !unknown)
        return true;
    return resolved(one) == resolved(other);
}

bool belongsToRegister(const QString& path, const QString& registerPath) {
    for (const QString& suffix : {u""_s, u"-journal"_s, u"-wal"_s, u"-shm"_s})
        if (sameFile(path, registerPath + suffix))
            return true;
    return false;
}

} // namespace transfer
