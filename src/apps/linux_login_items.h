#pragma once
// What starts at login on a Linux desktop, as LoginItem records: the XDG autostart entries (kind
// `loginItem`: what the session opens at login, as the Mac's login items are) and the systemd user
// services (kind `agent`: background jobs run as the user, as launch agents are).

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>

#include "apps/linux_app.h"
#include "apps/system_folders.h"
#include "core/records.h"

namespace LinuxLoginItems {

// Who "signed" a program on Linux: the Debian package that installed it, else this.
inline const QString notPackaged = QStringLiteral("Not packaged");

// The id of the Flatpak app a command starts ("flatpak run [options] ID [args]"; a "//branch"
// after the id is dropped); empty for any other command.
QString flatpakRunID(const QStringList& command);

// An item before it is judged: what its file says.
struct Draft {
    LoginItem item;           // name (may be empty), identifier, kind, enabled, path, needsAdmin
    QStringList command;      // Exec or ExecStart, split
    QString tryExec;
    QString flatpak;          // the owning Flatpak's id (X-Flatpak)

    bool operator==(const Draft&) const = default;
};

// What every draft is judged against, gathered once per listing.
struct Context {
    QList<LinuxApp> apps;
    std::function<bool(const QString&)> installed;  // is an app of this id installed?
    // The owning Debian package of each program path, asked once for all (DebianPackages::owners).
    std::function<QHash<QString, QString>(const QStringList&)> packages;
    QStringList searchPath;
};

// The drafts of the autostart entries and of the user services.
QList<Draft> drafts(const SystemFolders& folders);

// Fills developer, signer, missing and appStillThere (and the name when it has none):
// - the owning app is the Flatpak named by X-Flatpak or started by "flatpak run", the Flatpak
//   whose deployment holds the program, or the AppImage that is the program;
// - missing: the program (a bare name looked up in the search path) or TryExec is gone; a
//   program given relative to a folder or through a specifier only the service manager knows is
//   not judged;
// - signer: the Debian package of the program, else notPackaged;
// - appStillThere: the owning app is installed; without one, the program belongs to a package.
QList<LoginItem> judge(const QList<Draft>& drafts, const Context& context);

// drafts() judged against the installed Linux apps, the platform's knowledge and dpkg.
QList<LoginItem> list(const SystemFolders& folders = SystemFolders::current());

}  // namespace LinuxLoginItems
