#include "apps/system_folders.h"

#include "platform/system_figures.h"

SystemFolders SystemFolders::under(const QString& root) {
    return {root + QStringLiteral("/Applications"),     root + QStringLiteral("/Library/LaunchAgents"),
            root + QStringLiteral("/Library/LaunchDaemons"), root + QStringLiteral("/bin/launchctl"),
            root + QStringLiteral("/var/lib/flatpak"),       root + QStringLiteral("/etc/xdg/autostart"),
            root + QStringLiteral("/etc/systemd/user"),      root + QStringLiteral("/usr/lib/systemd/user"),
            root + QStringLiteral("/bin/systemctl")};
}

SystemFolders SystemFolders::current() { return under(SystemFigures::systemRoot()); }
