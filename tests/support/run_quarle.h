#pragma once
// Runs the real quarle program, as a user starts it, and collects what it printed.

#include <QByteArray>
#include <QStringList>

struct Ran {
    int status = -1;  // exit status; -1 when it did not exit normally
    QByteArray out;
    QByteArray err;
};

// Runs quarle with `args` (each taken as raw bytes) in the sandbox's environment plus `env`, with
// `input` on its standard input (by default none: /dev/null, so a question is never waited on).
Ran runQuarle(const QList<QByteArray>& args, const QList<QByteArray>& env = {}, const QByteArray& input = {});
