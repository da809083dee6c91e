#include "cli/verbs.h"

#include "cli/output.h"

const QList<Verb>& verbs() {
    static const QList<Verb> all{
        {"du", "du [--tree DEPTH] [--json] PATH…",
         "Size of each path: allocated bytes, hard links once, links not followed.", runDu},
        {"apps", "apps [--json]",
         "Installed apps (bundles, Flatpaks, AppImages) with their size and the files they left behind.", runApps},
        {"orphans", "orphans [--json] | orphans --remove NAME [--dry-run] [--yes] [--all-leftovers] [--free-now]",
         "Files left behind by apps that are no longer installed; --remove moves one app's to the Trash.",
         runOrphans},
        {"uninstall", "uninstall [--dry-run] [--yes] [--all-leftovers] [--free-now] APP",
         "Moves an app and the files it left (the sure ones, or all) to the Trash.", runUninstall},
        {"login-items", "login-items [--json]", "What starts at login or boot: launch agents and daemons, autostart entries, user services.",
         runLoginItems},
        {"report", "report [--json]",
         "Scans the home folder: the disk bar, what can be cleared, System Data.", runReport},
        {"clean", "clean [--developer] [--dry-run] [--json] [--yes] [--free-now] [ID…]",
         "Scans, then moves what is ticked by default (or the rows named) to the Trash after asking.", runClean},
        {"trash", "trash [--title T] PATH…",
         "Checks each path, moves it to the Trash and records it in History under one entry.", runTrash},
        {"history", "history [--json]", "What Quarle removed, newest first, with each entry's ID and items.",
         runHistory},
        {"restore", "restore ID [PATH…]", "Puts an entry's items (or only the given ones) back where they were.",
         runRestore},
        {"empty", "empty ID|--all [--yes]", "Deletes an entry's items (or all of Quarle's) from the Trash for good, after asking.",
         runEmpty},
        {"expire", "expire [--days N]",
         "Deletes Quarle's items that have been in the Trash longer than N days (default: the keepDays setting).",
         runExpire},
        {"keep-days", "keep-days [N] [--yes]",
         "How many days Quarle's items stay in the Trash; 0 keeps them until you empty them.", runKeepDays},
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
