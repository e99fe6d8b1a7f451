#include "faults/faulty_vfs.h"

#include <sqlite3.h>

#include <new>

namespace faults {

namespace {

sqlite3_vfs* system = nullptr;
int left = 0; // operations until the failing one; 0: none
bool allLater = false;
bool happened = false;

// True when this operation is to fail.
bool failing() {
    if (happened)
        return allLater;
    if (left == 0 || --left > 0)
        return false;
    happened = true;
    return true;
}

// The engine's file, and behind it the memory of the system's own.
struct File : sqlite3_file {
    sqlite3_file* own() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

sqlite3_file* own(sqlite3_file* file) {
    return static_cast<File*>(file)->own();
}

template <auto Method, class... Arguments> int pass(sqlite3_file* file, Arguments... arguments) {
    return (own(file)->pMethods->*Method)(own(file), arguments...);
}

int close(sqlite3_file* file) {
    return own(file)->pMethods ? own(file)->pMethods->xClose(own(file)) : SQLITE_OK;
}

int write(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 at) {
    return failing() ? SQLITE_IOERR_WRITE : own(file)->pMethods->xWrite(own(file), bytes, count, at);
}

int sync(sqlite3_file* file, int flags) {
    return failing() ? SQLITE_IOERR_FSYNC : own(file)->pMethods->xSync(own(file), flags);
}

int truncate(sqlite3_file* file, sqlite3_int64 size) {
    return failing() ? SQLITE_IOERR_TRUNCATE : own(file)->pMethods->xTruncate(own(file), size);
}

void shmBarrier(sqlite3_file* file) {
    own(file)->pMethods->xShmBarrier(own(file));
}

// Version 2: without memory-mapped reading and writing, which would go past the layer.
const sqlite3_io_methods methods{
    2,
    close,
    pass<&sqlite3_io_methods::xRead, void*, int, sqlite3_int64>,
    write,
    truncate,
    sync,
    pass<&sqlite3_io_methods::xFileSize, sqlite3_int64*>,
    pass<&sqlite3_io_methods::xLock, int>,
    pass<&sqlite3_io_methods::xUnlock, int>,
    pass<&sqlite3_io_methods::xCheckReservedLock, int*>,
    pass<&sqlite3_io_methods::xFileControl, int, void*>,
    pass<&sqlite3_io_methods::xSectorSize>,
    pass<&sqlite3_io_methods::xDeviceCharacteristics>,
    pass<&sqlite3_io_methods::xShmMap, int, int, int, void volatile**>,
    pass<&sqlite3_io_methods::xShmLock, int, int, int>,
    shmBarrier,
    pass<&sqlite3_io_methods::xShmUnmap, int>,
    nullptr,
    nullptr,
};

int open(sqlite3_vfs*, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags) {
    auto* wrapped = new (file) File{};
    const int result = system->xOpen(system, name, wrapped->own(), flags, outFlags);
    wrapped->pMethods = wrapped->own()->pMethods ? &methods : nullptr;
    return result;
}

} // namespace

void installFaultyFiles() {
    if (system)
        return;
    system = sqlite3_vfs_find(nullptr);
    static sqlite3_vfs faulty = *system;
    faulty.zName = "faulty";
    faulty.szOsFile += static_cast<int>(sizeof(File));
    faulty.xOpen = open;
    sqlite3_vfs_register(&faulty, 1);
}

void failAt(int nth, bool andAllLater) {
    left = nth;
    allLater = andAllLater;
    happened = false;
}

bool failed() {
    return happened;
}

} // namespace faults
