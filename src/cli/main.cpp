// quarle: the command line. Arguments are taken as raw bytes so that any file name reaches the
// engines unchanged.

#include <QCoreApplication>

#include "cli/output.h"
#include "cli/verbs.h"
#include "core/paths.h"
#include "ui/window/application.h"

int main(int argc, char** argv) {
    // Without a verb Quarle opens its window on a display and reports on the home folder otherwise.
    // The self-check run takes one option: --json.
    const bool selfCheckJson = argc == 2 && !qEnvironmentVariableIsEmpty("QUARLE_SELFTEST") && QByteArray(argv[1]) == "--json";
    if ((argc == 1 || selfCheckJson) && Ui::hasDisplay()) return Ui::run(argc, argv);
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Quarle"));

    QStringList args;
    for (int i = 1; i < argc; ++i) args.append(Paths::fromBytes(QByteArray(argv[i])));
    if (args.isEmpty()) return runReport({});
    if (args.first() == QLatin1String("help") || args.first() == QLatin1String("--help") ||
        args.first() == QLatin1String("-h")) {
        printUsage();
        return 0;
    }
    const QString verb = args.takeFirst();
    // An empty argument is most often a variable that was never set ("$UNSET"): taken as a path it
    // would mean the current folder, so no verb accepts one.
    if (args.contains(QString())) {
        Out::error(QStringLiteral("an empty argument names nothing (is a variable unset?); nothing was done."));
        return 2;
    }
    for (const Verb& v : verbs())
        if (verb == QLatin1String(v.name)) return v.run(args);
    Out::error(QStringLiteral("there is no verb \"%1\". Try \"quarle help\".").arg(verb));
    return 2;
}
