#pragma once
// XDG autostart: the desktop entries a desktop session starts at login, this user's
// ("autostart" in the config folder, honouring $XDG_CONFIG_HOME) and every user's
// ("/etc/xdg/autostart"). A user's entry of the same file name replaces the system's.

#include <QList>
#include <QString>
#include <optional>

#include "apps/system_folders.h"
#include "platform/desktop_entry.h"

namespace Autostart {

// One entry that takes part in login, as its files say.
struct Found {
    DesktopEntry entry;
    bool needsAdmin = false;               // it is the system's entry, not replaced by the user
    std::optional<DesktopEntry> replaced;  // the system's entry that the user's replaces

    // Hidden=true (how a user switches off a system entry) or X-GNOME-Autostart-enabled=false.
    bool enabled() const;
    // The name, command, TryExec and Flatpak id of the entry, each taken from the replaced
    // system entry when the user's leaves it out (an override often says only Hidden=true).
    QString name() const;
    QStringList exec() const;
    QString tryExec() const;
    QString flatpak() const;

    bool operator==(const Found&) const = default;
};

QString userFolder();

// The entries in file-name order, the user's and the system's together. A damaged system entry is
// left out; a user's file, even a damaged one, still replaces the system entry of its name (as the
// desktop does), and is itself left out when damaged. Entries of another Type than Application
// are left out.
QList<Found> list(const SystemFolders& folders = SystemFolders::current());

}  // namespace Autostart
