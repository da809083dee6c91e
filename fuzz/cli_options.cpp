// The command line: NUL-separated arguments, the first naming the verb, taken as raw bytes the
// way main() takes them and given to that verb's option parser (nothing is run).
#include "cli/option_checks.h"
#include "core/paths.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    QStringList args;
    for (const QByteArray& arg : fuzzBytes(data, size).split('\0')) args.append(Paths::fromBytes(arg));
    const QString verb = args.takeFirst();
    if (verb == QLatin1String("du")) duOptionsParse(args);
    else if (verb == QLatin1String("clean")) cleanOptionsParse(args);
    else if (verb == QLatin1String("trash")) trashOptionsParse(args);
    else if (verb == QLatin1String("uninstall") || verb == QLatin1String("orphans")) appOptionsParse(verb, args);
    return 0;
}
