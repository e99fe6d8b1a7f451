// One fuzzer: FUZZ_TARGET is the function of targets.h that it feeds.
#include "targets.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    fuzz::FUZZ_TARGET(QByteArrayView(data, static_cast<qsizetype>(size)));
    return 0;
}
