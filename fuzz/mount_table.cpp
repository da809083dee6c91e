// The mount table (/proc/self/mountinfo) and the octal escapes of its names: the mount point
// found for a path always contains it.
#include "core/paths.h"
#include "fuzz.h"
#include "platform/system_figures.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = fuzzBytes(data, size);
    for (const QString& path : {QStringLiteral("/home/u/Pictures"), QStringLiteral("/")}) {
        const QString point = SystemFigures::mountPointIn(bytes, path);
        FUZZ_CHECK(Paths::isWithin(path, point));
    }
    FUZZ_CHECK(SystemFigures::unescapeOctal(bytes).size() <= bytes.size());
    return 0;
}
