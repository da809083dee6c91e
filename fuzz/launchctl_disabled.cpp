// `launchctl print-disabled`: labels with whether launchd has them disabled.
#include "apps/login_items.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    LoginItems::parseDisabled(QString::fromUtf8(fuzzBytes(data, size)));
    return 0;
}
