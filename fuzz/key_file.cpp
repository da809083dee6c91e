// "[Group]" and "Key=Value" files in both dialects: every entry read is found again by its group
// and key.
#include "fuzz.h"
#include "platform/key_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = fuzzBytes(data, size);
    for (const auto syntax : {KeyFile::Syntax::desktopEntry, KeyFile::Syntax::systemdUnit}) {
        const auto file = KeyFile::parse(bytes, syntax);
        if (!file) continue;
        for (const KeyFile::Entry& e : file->entries) {
            FUZZ_CHECK(file->hasGroup(e.group));
            FUZZ_CHECK(file->values(e.group, e.key).contains(e.value));
            FUZZ_CHECK(file->value(e.group, e.key).has_value());
            file->flag(e.group, e.key);
        }
    }
    return 0;
}
