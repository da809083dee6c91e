#include "cli/verbs.h"

#include "cli/output.h"

const QList<Verb>& verbs() {
    static const QList<Verb> all{
        {"du", "du [--tree DEPTH] [--json] PATH…",
         "Size of each path: allocated bytes, hard links once, links not followed.", runDu},
        {"apps", "apps [--json]",
         "Installed apps with their size, developer and the Library items they left behind.", runApps},
        {"orphans", "orphans [--json]", "Library items left behind by apps that are no longer installed.",
         runOrphans},
        {"login-items", "login-items [--json]", "Launch agents and daemons that start at login or boot.",
         runLoginItems},
        {"report", "report [--json]",
         "Scans the home folder: the disk bar, what can be cleared, System Data.", runReport},
    };
    return all;
}

void printUsage() {
    Out::line(QStringLiteral("Usage: quarle VERB [OPTIONS]"));
    Out::line();
    for (const Verb& v : verbs()) {
        Out::line(QStringLiteral("  quarle ") + QString::fromUtf8(v.usage));
        Out::line(QStringLiteral("      ") + QString::fromUtf8(v.summary));
    }
}
