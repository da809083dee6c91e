#include "apps/system_folders.h"

#include <QDir>

#include "core/paths.h"

SystemFolders SystemFolders::under(const QString& root) {
    return {root + QStringLiteral("/Applications"), root + QStringLiteral("/Library/LaunchAgents"),
            root + QStringLiteral("/Library/LaunchDaemons"), root + QStringLiteral("/bin/launchctl")};
}

SystemFolders SystemFolders::current() {
    const QByteArray root = qgetenv("QUARLE_SYSTEM_ROOT");
    if (root.isEmpty()) return under(QString());
    const QString path = Paths::standardize(QDir::current().absoluteFilePath(Paths::fromBytes(root)), QString());
    return under(path == QStringLiteral("/") ? QString() : path);
}
