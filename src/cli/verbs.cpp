#include "cli/verbs.h"

#include "cli/output.h"

const QList<Verb>& verbs() {
    static const QList<Verb> all{
        {"du", "du [--tree DEPTH] [--json] PATH…",
         "Size of each path: allocated bytes, hard links once, links not followed.", runDu},
        {"apps", "apps [--json]",
         "Installed apps (bundles, Flatpaks, AppImages) with their size and the files they left behind.", runApps},
        {"orphans", "orphans [--json]", "Files left behind by apps that are no longer installed.",
         runOrphans},
        {"login-items", "login-items [--json]", "What starts at login or boot: launch agents and daemons, autostart entries, user services.",
         runLoginItems},
        {"report", "report [--json]",
         "Scans the home folder: the disk bar, what can be cleared, System Data.", runReport},
        {"trash", "trash [--title T] PATH…",
         "Checks each path, moves it to the Trash and records it in History under one entry.", runTrash},
        {"history", "history [--json]", "What Quarle removed, newest first, with each entry's ID and items.",
         runHistory},
        {"restore", "restore ID [PATH…]", "Puts an entry's items (or only the given ones) back where they were.",
         runRestore},
        {"empty", "empty ID", "Deletes an entry's items from the Trash for good.", runEmpty},
        {"expire", "expire [--days N]",
         "Deletes Quarle's items that have been in the Trash longer than N days (default: the keepDays setting).",
         runExpire},
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
