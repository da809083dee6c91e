// Property lists (XML and binary) read through libplist, then the values launchd jobs and app
// bundles are asked for.
#include "apps/property_list.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto dict = PropertyList::parse(fuzzBytes(data, size));
    if (!dict) return 0;
    for (auto it = dict->begin(); it != dict->end(); ++it) {
        PropertyList::text(*dict, it.key());
        PropertyList::texts(*dict, it.key());
    }
    return 0;
}
