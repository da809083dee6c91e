#pragma once
// The system-wide places the apps engines read besides the home folder. Normally the machine's own;
// the environment variable QUARLE_SYSTEM_ROOT puts all of them under another folder, so that a
// fixture run (and every test) reads a system of its own and never the real one. The engines take
// this record as a parameter that defaults to current().

#include <QString>

struct SystemFolders {
    QString applications;   // "/Applications"
    QString launchAgents;   // "/Library/LaunchAgents"
    QString launchDaemons;  // "/Library/LaunchDaemons"
    QString launchctl;      // "/bin/launchctl"
    QString flatpak;        // "/var/lib/flatpak", the system-wide Flatpak installation
    QString autostart;      // "/etc/xdg/autostart", desktop entries started at every user's login
    QString userUnitsAdmin;   // "/etc/systemd/user", systemd user units the administrator added
    QString userUnitsVendor;  // "/usr/lib/systemd/user", systemd user units of installed packages
    QString systemctl;      // "/bin/systemctl"

    // The places under `root` ("" gives the real ones).
    static SystemFolders under(const QString& root);
    // under($QUARLE_SYSTEM_ROOT), or the real places when it is unset or empty.
    static SystemFolders current();

    bool operator==(const SystemFolders&) const = default;
};
