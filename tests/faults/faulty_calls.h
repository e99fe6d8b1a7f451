#pragma once

// The system calls through which the program, its libraries and the engine reach their files, each of which can fail.
namespace faults {

enum class Failing {
    oneCall,     // any of them, once
    writingSince // every one that writes, from then on, as on a disk that gives way
};

// From now on the nth of the calls that may fail so (1: the next one) fails. 0: none does.
void failAt(int nth, Failing failing = Failing::oneCall);

// Whether the failure has come to pass since failAt().
bool failed();

// New files may be read by everybody, as where a file system keeps no permissions.
void keepNoPermissions(bool keepNone);

} // namespace faults
