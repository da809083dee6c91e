#include "apps/system_folders.h"

#include <QDir>

#include "core/paths.h"

SystemFolders SystemFolders::under(const QString& root) {
    return {root + QStringLiteral("/Applications"),     root + QStringLiteral("/Library/LaunchAgents"),
            root + QStringLiteral("/Library/LaunchDaemons"), root + QStringLiteral("/bin/launchctl"),
            root + QStringLiteral("/var/lib/flatpak"),       root + QStringLiteral("/etc/xdg/autostart"),
            root + QStringLiteral("/etc/systemd/user"),      root + QStringLiteral("/usr/lib/systemd/user"),
            root + QStringLiteral("/bin/systemctl")};
}

SystemFolders SystemFolders::current() {
    const QByteArray root = qgetenv("QUARLE_SYSTEM_ROOT");
    if (root.isEmpty()) return under(QString());
    const QString path = Paths::standardize(QDir::current().absoluteFilePath(Paths::fromBytes(root)), QString());
    return under(path == QStringLiteral("/") ? QString() : path);
}
