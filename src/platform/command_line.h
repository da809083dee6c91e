#pragma once
// The command lines of desktop entries (Exec, TryExec) and of systemd units (ExecStart): split into
// arguments, and the program they run found on disk.

#include <QString>
#include <QStringList>
#include <optional>

namespace CommandLine {

// Splits at blanks outside quotes; "double" and 'single' quotes group, a backslash outside single
// quotes takes the next character as it is. Nothing when a quote is left open.
std::optional<QStringList> split(const QString& line);

// The program of a command: its first argument, or, when that is "env", the first argument after
// env's options and NAME=value words. Empty when there is none.
QString program(const QStringList& args);

// The folders of $PATH, or the usual ones when it is unset or empty; relative entries are dropped.
QStringList searchPath();

// Where `program` is: itself when it is an absolute path to something that exists, else (a bare
// name) the first folder of `folders` holding an executable file of that name. Nothing when it
// is not found, and for a relative path with a "/" (it depends on a working folder we do not know).
std::optional<QString> locate(const QString& program, const QStringList& folders = searchPath());

}  // namespace CommandLine
