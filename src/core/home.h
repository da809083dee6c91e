#pragma once
// Which folder counts as the home folder for the whole program, decided once.

#include <QString>
#include <functional>
#include <optional>

namespace Home {

// The home folder of the invented machine shown when QUARLE_DEMO is set; nothing is read from it.
inline const QString demoPath = QStringLiteral("/Users/robin");

// "QUARLE_ROOT" when set and not empty (standardised, made absolute), else the demonstration home
// when "QUARLE_DEMO" is set, else the account's home. `env` reads an environment variable
// (nothing when unset); the decision itself is pure so that it can be tested.
QString decide(const std::function<std::optional<QString>(const char*)>& env,
               const QString& accountHome, const QString& currentDir);

// The account's home folder: $HOME when it is absolute, else the password database's entry.
QString accountHome();

const QString& path();
// True when path() is not the account's own home folder (another root or the demonstration).
bool isFake();
// path() + "/" + relative.
QString at(const QString& relative);

// Where Quarle's data and the home Trash live: $XDG_DATA_HOME when it is absolute, else
// <home>/.local/share. Under another root (QUARLE_ROOT) always <root>/.local/share, so that a run on
// a fixture home never reaches the user's own data.
QString dataFolder();
// The home Trash as FreeDesktop.org lays it out: dataFolder() + "/Trash".
QString trashFolder();

}  // namespace Home
