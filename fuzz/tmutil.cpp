// `tmutil listlocalsnapshots`: snapshot names, never empty ones.
#include "fuzz.h"
#include "scan/probes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    for (const QString& name : Scanner::parseSnapshots(QString::fromUtf8(fuzzBytes(data, size))))
        FUZZ_CHECK(!name.isEmpty());
    return 0;
}
