#include "app/open_program.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QThread>

using namespace Qt::StringLiterals;

namespace app {

namespace {

// By this a desktop knows that it was the user who wanted the window in front.
constexpr auto activationToken = "XDG_ACTIVATION_TOKEN";
constexpr unsigned long betweenLooks = 20; // ms
constexpr std::chrono::milliseconds afterTheStart{200};

QString folderOf(const QString& registerPath) {
    const QString place = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    const QFileInfo file(registerPath);
    const QString path = file.exists() ? file.canonicalFilePath() : file.absoluteFilePath();
    const QByteArray name = QCryptographicHash::hash(path.toUtf8(), QCryptographicHash::Sha256).toHex().first(16);
    const QString folder = QDir(place).filePath(u"hoshiren-"_s + QString::fromLatin1(name));
    return !place.isEmpty() && QDir().mkpath(folder) ? folder : QString();
}

} // namespace

OpenProgram::OpenProgram(const QString& registerPath) : folder_(folderOf(registerPath)) {
    if (folder_.isEmpty())
        return;
    request_ = QDir(folder_).filePath(u"forward"_s);
    lock_ = std::make_unique<QLockFile>(QDir(folder_).filePath(u"first"_s));
    lock_->setStaleLockTime(0); // held for days; that its holder is gone is found out all the same
}

bool OpenProgram::isFirst() {
    return !lock_ || lock_->isLocked() || lock_->tryLock(0) || lock_->error() != QLockFile::LockFailedError;
}

OpenProgram::Found OpenProgram::bringForward(std::chrono::milliseconds patience) {
    if (isFirst())
        return Found::none;
    const QDeadlineTimer end(patience);
    QSaveFile request(request_);
    if (!request.open(QIODevice::WriteOnly) || request.write(qgetenv(activationToken)) < 0 || !request.commit())
        return Found::silent;
    while (!end.hasExpired()) {
        if (!QFile::exists(request_))
            return Found::forward;
        // The first one may have ended meanwhile.
        if (isFirst()) {
            QFile::remove(request_);
            return Found::none;
        }
        QThread::msleep(betweenLooks);
    }
    QFile::remove(request_);
    return Found::silent;
}

void OpenProgram::onAsked(std::function<void()> comeForward) {
    comeForward_ = std::move(comeForward);
    begin_.setSingleShot(true);
    begin_.callOnTimeout([this] { listen(); });
    begin_.start(afterTheStart);
}

void OpenProgram::listen() {
    if (folder_.isEmpty() || !isFirst())
        return;
    watcher_ = std::make_unique<QFileSystemWatcher>(QStringList{folder_});
    QObject::connect(watcher_.get(), &QFileSystemWatcher::directoryChanged, watcher_.get(), [this] { look(); });
    // Somebody who started the program twice at once has asked already.
    look();
}

void OpenProgram::look() {
    QFile request(request_);
    if (!request.open(QIODevice::ReadOnly))
        return;
    if (const QByteArray token = request.readAll(); !token.isEmpty())
        qputenv(activationToken, token);
    comeForward_();
    request.remove();
}

} // namespace app
