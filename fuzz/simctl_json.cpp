// `simctl list devices unavailable -j`: every simulator found has a data folder.
#include "fuzz.h"
#include "scan/probes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    for (const auto& s : Scanner::parseUnavailableSimulators(QString::fromUtf8(fuzzBytes(data, size))))
        FUZZ_CHECK(!s.dataPath.isEmpty());
    return 0;
}
