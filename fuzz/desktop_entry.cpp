// Desktop entries (launchers and autostart entries) with their Exec split into arguments.
#include "fuzz.h"
#include "platform/desktop_entry.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto entry = DesktopEntry::parse(fuzzBytes(data, size), QStringLiteral("/home/u/.config/autostart/a.desktop"));
    if (!entry) return 0;
    FUZZ_CHECK(entry->id == QLatin1String("a"));
    if (entry->exec.isEmpty()) FUZZ_CHECK(entry->program().isEmpty());
    return 0;
}
