// `dpkg -S` output: path → owning packages, every path absolute and every owner named.
#include "fuzz.h"
#include "platform/debian_packages.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto owners = DebianPackages::parseOwners(QString::fromUtf8(fuzzBytes(data, size)));
    for (auto it = owners.begin(); it != owners.end(); ++it) FUZZ_CHECK(!it.value().isEmpty());
    return 0;
}
