// NAME.trashinfo files and their percent-encoded paths: what parses leads to one absolute path
// with no "." or ".." left, and every name survives encoding and decoding unchanged.
#include "core/paths.h"
#include "fuzz.h"
#include "removal/trash_info.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = fuzzBytes(data, size);
    for (const QString& base : {QStringLiteral("/home/u"), QStringLiteral("/media/stick")}) {
        if (const auto parsed = TrashInfo::parse(bytes, base)) {
            FUZZ_CHECK(parsed->original.startsWith(QLatin1Char('/')));
            for (const QString& part : parsed->original.split(QLatin1Char('/')))
                FUZZ_CHECK(part != QLatin1String(".") && part != QLatin1String(".."));
        }
    }
    TrashInfo::decodePath(bytes);
    if (!bytes.contains('\0')) FUZZ_CHECK(TrashInfo::decodePath(TrashInfo::encodePath(bytes)) == bytes);
    return 0;
}
