#pragma once
// Where user preferences live: an INI file under the XDG config folder. A sandboxed run (the
// demonstration, another home folder, the self-check) uses a separate file that is wiped when the
// run starts, so it begins from empty preferences and never touches the user's real ones.

#include <climits>

#include <QSettings>
#include <QStringList>
#include <QVariant>

namespace Prefs {

// True when QUARLE_DEMO or QUARLE_SELFTEST is set, or the home folder is not the account's own.
bool sandboxed();

// The file the preferences are kept in.
QString storePath();

// Opens the store kept in `file`. With `wipe` (a sandboxed run) the file is removed first; a file
// that cannot be parsed is moved aside next to it, and the store starts empty.
QSettings* openStore(const QString& file, bool wipe);

// Reads and writes of the store; safe from any thread.
QVariant value(const QString& key, const QVariant& fallback = {});
// False when the file could not be written (a full disk, a folder that may not be written).
bool setValue(const QString& key, const QVariant& value);
QStringList stringList(const QString& key);
// An integer preference; `fallback` when missing, not a whole number or below `min`; at most `max`.
int integer(const QString& key, int fallback, int min = INT_MIN, int max = INT_MAX);

// The longest keep period: a hundred years. Longer ones are cut to it, never wrapped around.
constexpr int maxKeepDays = 36500;

}  // namespace Prefs
