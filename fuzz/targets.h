#pragma once

#include <QByteArray>
#include <QByteArrayView>

// What the fuzzers feed and what the tests replay from the corpora. A target aborts when a promise of the code under it
// does not hold for the bytes.
namespace fuzz {

struct Target {
    const char* name; // of the corpus folder, too
    void (*run)(QByteArrayView bytes);
};

// Records as read, whatever the bytes; what is accepted survives being written and read again.
void bulkFile(QByteArrayView bytes);
// Numbers and dates as typed.
void typedTexts(QByteArrayView bytes);
// Dates to their era form and back; era years as typed.
void eraRoundTrip(QByteArrayView bytes);
// A Jet database, whole or damaged: every table is read to its end or the file refused.
void jetFile(QByteArrayView bytes);

inline constexpr Target targets[] = {
    {"bulk_file", bulkFile},
    {"typed_texts", typedTexts},
    {"era_round_trip", eraRoundTrip},
    {"jet_file", jetFile},
};

} // namespace fuzz
