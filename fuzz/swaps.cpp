// /proc/swaps: sizes are never negative, and the sum is never less than any one area.
#include "fuzz.h"
#include "platform/system_figures.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = fuzzBytes(data, size);
    const qint64 used = SystemFigures::parseSwaps(bytes);
    FUZZ_CHECK(used >= 0);
    for (const auto& area : SystemFigures::parseSwapAreas(bytes)) {
        FUZZ_CHECK(area.size >= 0 && area.used >= 0 && area.used <= used);
    }
    return 0;
}
