// Definitions in the program itself take precedence over those of the C library, for the libraries, too. The headers
// that declare these functions are left out: their declarations differ in what is no matter for the call.
#include "faults/faulty_calls.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

#include <dlfcn.h>

namespace faults {

namespace {

std::atomic<int> left = 0; // calls until the failing one; 0: none
std::atomic<Failing> kind = Failing::oneCall;
std::atomic<bool> happened = false;
std::atomic<bool> noPermissions = false;

// True, with the error set, when this call is to fail.
bool failing(bool writes) {
    if (kind == Failing::writingSince && !writes)
        return false;
    const bool now = happened ? kind == Failing::writingSince : left > 0 && --left == 0;
    if (now) {
        happened = true;
        errno = EIO;
    }
    return now;
}

template <class Function> Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

void failAt(int nth, Failing failing) {
    kind = failing;
    happened = false;
    left = nth;
}

bool failed() {
    return happened;
}

void keepNoPermissions(bool keepNone) {
    noPermissions = keepNone;
}

} // namespace faults

namespace {

constexpr int create = 0100; // O_CREAT

template <class... Arguments> long pass(const char* name, bool writes, Arguments... arguments) {
    using Function = long(Arguments...);
    return faults::failing(writes) ? -1 : faults::next<Function>(name)(arguments...);
}

int pass(const char* name, const char* path, int flags, unsigned mode) {
    using Function = int(const char*, int, ...);
    if (faults::failing((flags & create) != 0))
        return -1;
    return faults::next<Function>(name)(path, flags, faults::noPermissions ? mode | 0044 : mode);
}

} // namespace

extern "C" {

int open(const char* path, int flags, unsigned mode) {
    return pass("open", path, flags, mode);
}
int open64(const char* path, int flags, unsigned mode) {
    return pass("open64", path, flags, mode);
}
long read(int file, void* bytes, std::size_t count) {
    return pass("read", false, file, bytes, count);
}
long pread64(int file, void* bytes, std::size_t count, long at) {
    return pass("pread64", false, file, bytes, count, at);
}
long write(int file, const void* bytes, std::size_t count) {
    return pass("write", true, file, bytes, count);
}
long pwrite64(int file, const void* bytes, std::size_t count, long at) {
    return pass("pwrite64", true, file, bytes, count, at);
}
int fsync(int file) {
    return static_cast<int>(pass("fsync", true, file));
}
int fdatasync(int file) {
    return static_cast<int>(pass("fdatasync", true, file));
}
int ftruncate64(int file, long size) {
    return static_cast<int>(pass("ftruncate64", true, file, size));
}
int rename(const char* from, const char* to) {
    return static_cast<int>(pass("rename", true, from, to));
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
    return static_cast<int>(pass("renameat2", true, fromFolder, from, toFolder, to, flags));
}
int unlink(const char* path) {
    return static_cast<int>(pass("unlink", true, path));
}
int mkdir(const char* path, unsigned mode) {
    return static_cast<int>(pass("mkdir", true, path, mode));
}
}
