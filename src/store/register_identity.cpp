#include "store/register_identity.h"

#include "store/database.h"

#include <QFile>
#include <QFileInfo>

#if __has_include(<sys/stat.h>) && !defined(_WIN32)
#include <sys/stat.h>
#define HOSHIREN_NUMBERED_FILES
#endif

namespace store {

RegisterIdentity registerIdentity() {
    return registerIdentity(Database::registerPath());
}

RegisterIdentity registerIdentity(const QString& path) {
    RegisterIdentity identity;
#ifdef HOSHIREN_NUMBERED_FILES
    struct stat status {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return identity;
    identity.device = status.st_dev;
    identity.number = status.st_ino;
#endif
    // The system reuses a file's number soon after the file is deleted.
    identity.made = QFileInfo(path).birthTime();
    return identity;
}

} // namespace store
