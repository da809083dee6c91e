#pragma once
// The per-user XDG folders of the home Quarle looks at. For the account's own home they honour
// $XDG_CONFIG_HOME, $XDG_DATA_HOME and $XDG_CACHE_HOME (when absolute); under another root
// (QUARLE_ROOT) they are always the default places below that root, as Home::dataFolder() is, so a
// run on a fixture home never reads the user's own.

#include <QString>

namespace XdgHomes {

QString config();  // default <home>/.config
QString data();    // default <home>/.local/share
QString cache();   // default <home>/.cache

}  // namespace XdgHomes
