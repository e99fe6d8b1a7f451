#include "store/register_state.h"

#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace store {

namespace {

constexpr int counterAt = 24;
constexpr int counterBytes = 4;
constexpr qint64 logHeadBytes = 32;
constexpr qint64 clockStep = 100; // ms, more than a file system's clock ever stands still

struct Close {
    void operator()(sqlite3* engine) const { sqlite3_close(engine); }
};

// Through the engine: closing a file of one's own would end every lock that this process holds on the register.
QByteArray changeCounter(const QString& path) {
    sqlite3* handle = nullptr;
    const int opened = sqlite3_open_v2(QFile::encodeName(path).constData(), &handle,
                                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    const std::unique_ptr<sqlite3, Close> engine(handle);
    sqlite3_file* file = nullptr;
    QByteArray counter(counterBytes, '\0');
    if (opened != SQLITE_OK || sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK ||
        !file->pMethods || file->pMethods->xRead(file, counter.data(), counterBytes, counterAt) != SQLITE_OK)
        return {};
    return counter;
}

} // namespace

RegisterState registerState(const QString& path) {
    RegisterState state;
    state.file = registerIdentity(path);
    if (!QFileInfo(path).isFile())
        return state;
    state.counter = changeCounter(path);
    // No lock of the engine's is on the log itself.
    if (QFile log(path + u"-wal"_s); log.open(QIODevice::ReadOnly)) {
        const QFileInfo info(log);
        state.logBytes = info.size();
        state.logChanged = info.lastModified();
        state.logHead = log.read(logHeadBytes);
        state.settled = std::abs(state.logChanged.msecsTo(QDateTime::currentDateTime())) > clockStep;
    }
    return state;
}

} // namespace store
