// History's file: JSON text decoded into a list of entries. Whatever decodes must also survive
// being written back and read again, or a save would lose History.
#include "core/record_json.h"
#include "fuzz.h"

namespace {
std::optional<QList<HistoryEntry>> decode(const QByteArray& text) {
    const auto json = parseJson(text);
    if (!json) return std::nullopt;
    return decodeJsonList<HistoryEntry>(*json);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto list = decode(fuzzBytes(data, size));
    if (!list) return 0;
    const auto again = decode(encodeJsonList(*list).toText());
    FUZZ_CHECK(again && again->size() == list->size());
    const auto third = decode(encodeJsonList(*again).toText());
    FUZZ_CHECK(third && *third == *again);
    return 0;
}
