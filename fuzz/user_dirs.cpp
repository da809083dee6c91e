// user-dirs.dirs: every folder it names is absolute, or empty for "not set up".
#include "fuzz.h"
#include "platform/user_dirs.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto dirs = UserDirs::parse(fuzzBytes(data, size), QStringLiteral("/home/u"));
    for (const QString& path : dirs) FUZZ_CHECK(path.isEmpty() || path.startsWith(QLatin1Char('/')));
    return 0;
}
