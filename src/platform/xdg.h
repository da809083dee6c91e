#pragma once
// The XDG base folders of the home folder Quarle measures. A variable counts only when it holds an
// absolute path (the XDG rule for relative ones: ignore them). Under another root (QUARLE_ROOT) the
// variables are never read, so that a run on a fixture home never reaches the user's own folders.

#include <QString>

namespace Xdg {

// $`variable` when it is set and absolute, else the home folder's `fallback` (relative to it);
// always the latter under another root. Standardised, no trailing slash.
QString folder(const char* variable, const QString& fallback);

// $XDG_CACHE_HOME, else ~/.cache.
QString cacheHome();
// $XDG_CONFIG_HOME, else ~/.config.
QString configHome();
// $XDG_DATA_HOME, else ~/.local/share (Home::dataFolder(), which the Trash also lives under).
QString dataHome();

}  // namespace Xdg
