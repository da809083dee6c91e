#pragma once
// The command-line verbs: one function each, taking the arguments after the verb and returning the
// exit status (0 done, 1 something failed or was refused, 2 the command line was wrong).

#include <QList>
#include <QStringList>

struct Verb {
    const char* name;
    const char* usage;
    const char* summary;
    int (*run)(const QStringList& args);
};

const QList<Verb>& verbs();
void printUsage();

int runDu(const QStringList& args);
int runApps(const QStringList& args);
int runOrphans(const QStringList& args);
int runLoginItems(const QStringList& args);
int runReport(const QStringList& args);
int runTrash(const QStringList& args);
int runHistory(const QStringList& args);
int runRestore(const QStringList& args);
int runEmpty(const QStringList& args);
int runExpire(const QStringList& args);
int runClean(const QStringList& args);
int runKeepDays(const QStringList& args);
int runUninstall(const QStringList& args);
// quarle orphans --remove NAME, reached through runOrphans.
int runOrphanRemoval(const QStringList& args);
