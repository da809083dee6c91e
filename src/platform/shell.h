#pragma once
// Running a child process with a deadline: both of its output pipes are drained as it writes, so a
// chatty child never blocks, and a child still running at the deadline is terminated together
// with anything it started.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace Shell {

struct Outcome {
    bool launched = false;
    bool timedOut = false;
    int status = -1;  // exit status; -1 when killed by a signal or never started
    QByteArray out;
    QByteArray err;

    bool succeeded() const { return launched && !timedOut && status == 0; }
};

// Runs `arguments` (program first: a path, or a name looked up in PATH) with standard input from
// /dev/null, waiting at most `timeoutSeconds`.
Outcome exec(const QStringList& arguments, double timeoutSeconds);

// The child's standard output as text, only when it started, exited with status 0 before the
// deadline and printed valid UTF-8; nothing otherwise.
std::optional<QString> run(const QStringList& arguments, double timeoutSeconds);

}  // namespace Shell
