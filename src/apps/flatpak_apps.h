#pragma once
// Installed Flatpak apps, read from the installations' folders so that nothing needs a running
// flatpak: "<installation>/app/<id>/current/active" is the deployed commit, holding "metadata",
// the app's files and the desktop entries it exports.

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>

#include "apps/linux_app.h"
#include "apps/system_folders.h"

namespace FlatpakApps {

// The user's installation: the data folder + "/flatpak" (default ~/.local/share/flatpak).
QString userInstallation();

// The ids with a deployment ("app/<id>/current/active" is a folder) in an installation, in name order.
QStringList deployed(const QString& installation);

// One deployed app. The name is the Name of its exported desktop entry (else of the one among its
// files, else the id); the program is the "command" of its metadata; the developer is the
// untranslated developer name of its AppStream data, else the vendor part of the id. A damaged or
// missing file only leaves its part out: a deployed app is always listed.
LinuxApp read(const QString& installation, const QString& id, LinuxApp::Origin origin);

// The developer named in AppStream XML: <developer><name> (AppStream 1.0), else <developer_name>,
// the untranslated ones; empty when there is none or the XML is damaged.
QString appStreamDeveloper(const QByteArray& xml);

// The user's apps, then the system's.
QList<LinuxApp> list(const SystemFolders& folders = SystemFolders::current());
// The ids deployed in either installation, whether or not their files could be read.
QSet<QString> installedIDs(const SystemFolders& folders = SystemFolders::current());

// A lookup for many questions in a row: is an app of this id still on this machine, deployed in
// either installation (installedIDs) or known to the platform (KnownApps::lookup)?
std::function<bool(const QString&)> stillInstalled(const SystemFolders& folders = SystemFolders::current());

}  // namespace FlatpakApps
