#pragma once
// Which programs the user is running now, read from /proc, and whether one of them is the app that
// keeps its settings in a given folder of ~/.config. Desktop apps built on Electron or Chromium
// have no application id outside Flatpak, so they are recognised by their executable's name.

#include <QList>
#include <QString>

namespace RunningPrograms {

struct Program {
    QString exe;  // the executable's path; empty when it cannot be read
    QString name;  // the process name (comm), at most 15 bytes

    bool operator==(const Program&) const = default;
};

// The processes of this user in `proc` (/proc unless a test gives another folder): every numeric
// entry owned by the effective user, with its executable and name. Empty when `proc` cannot be read.
QList<Program> list(const QString& proc = QStringLiteral("/proc"));

// True when one of `programs` is probably the app whose folder in ~/.config is named `folder`:
// their names agree once case and punctuation are dropped ("Code" and code, "Signal" and
// signal-desktop), or a word of the folder's name is a folder on the executable's path
// ("google-chrome" and /opt/google/chrome/chrome). It errs towards "running": a cache left alone
// costs nothing, one cleared under a running app can crash it.
bool runs(const QString& folder, const QList<Program>& programs);

}  // namespace RunningPrograms
