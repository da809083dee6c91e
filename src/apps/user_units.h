#pragma once
// systemd user units: services that the user's service manager starts for this user
// ("systemd/user" in the config and data folders) or for every user ("/etc/systemd/user",
// "/usr/lib/systemd/user"). A unit is enabled when a link to it sits in a "*.wants" or
// "*.requires" folder of one of those places (what `systemctl --user enable` makes), or when
// `systemctl --user is-enabled` says so.

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>

#include "apps/system_folders.h"
#include "platform/key_file.h"

namespace UserUnits {

struct Unit {
    QString name;  // "backup.service"; a template keeps its "@" ("sync@.service")
    QString path;  // the file that defines it
    bool needsAdmin = false;  // defined in a system-wide folder
    QString description;
    QStringList command;      // ExecStart split into arguments, prefixes gone and %h filled in
    bool enabled = false;

    bool operator==(const Unit&) const = default;
};

struct Folder {
    QString path;
    bool systemWide = false;
};

// The unit folders in systemd's order of precedence (a unit file in an earlier one hides those of
// the same name in later ones): the config folder's, /etc/systemd/user, the data folder's,
// /usr/lib/systemd/user.
QList<Folder> folders(const SystemFolders& system = SystemFolders::current());

// The command of a service: the first ExecStart after the last empty one (which resets the list),
// without its prefixes ("-", "@", ":", "+", "!", "!!") and with "%h" (the home folder) and "%%"
// filled in. Nothing without an ExecStart or when its quoting is broken.
std::optional<QStringList> command(const KeyFile& unit, const QString& home);

// Parses `systemctl is-enabled` output for `names` (one line per name, in order): true for
// "enabled"/"enabled-runtime", false for "disabled"/"masked"/"masked-runtime"; other answers
// ("static", "indirect", "linked", …) are left to the links. Empty when the line count differs.
QHash<QString, bool> parseIsEnabled(const QString& output, const QStringList& names);

// The services of all folders, in name order. Those of this user's folders are all listed; of
// the system-wide ones only those that are enabled or can be (their [Install] section names a
// WantedBy or RequiredBy), the others being started only on another unit's demand. A masked unit
// (its file a link to /dev/null, or empty) is listed, disabled, from the file it hides; damaged
// files are left out. `systemctl` (nothing: do not ask) is run once for all names.
QList<Unit> list(const SystemFolders& system = SystemFolders::current(),
                 const std::optional<QString>& systemctl = std::nullopt);

}  // namespace UserUnits
