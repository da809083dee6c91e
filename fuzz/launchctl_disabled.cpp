// `launchctl print-disabled`: labels with whether launchd has them disabled.
#include "apps/login_items.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto disabled = LoginItems::parseDisabled(QString::fromUtf8(fuzzBytes(data, size)));
    for (auto it = disabled.begin(); it != disabled.end(); ++it) FUZZ_CHECK(!it.key().contains(QLatin1Char('"')));
    return 0;
}
