#pragma once
// AppImages: single-file apps the user keeps in ~/Applications or ~/.local/bin, often with a
// desktop entry in ~/.local/share/applications (written by the app itself or by an integration
// tool such as appimaged) that gives them their name.

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include "apps/linux_app.h"
#include "platform/desktop_entry.h"

namespace AppImages {

// Home "Applications" and ".local/bin".
QStringList folders();

// The start of an ELF file that is an AppImage: "\x7fELF", and the magic "AI" with the AppImage
// type (1 or 2) at offset 8.
bool hasMagic(const QByteArray& head);
// A regular file named "*.AppImage" (any case), or an ELF file with the AppImage magic.
bool isAppImage(const QString& path, const QString& fileName);

// The name of an app from its file name alone: "Night-Owl-2.3.1-x86_64.AppImage" gives
// "Night-Owl", the extension, version and machine architecture being left out.
QString nameFromFile(const QString& fileName);

// The app id carried by an integration tool's desktop entry id ("appimagekit_<hash>-org.ex.App"
// gives "org.ex.App"), or by the id itself; empty unless it has the shape of an app id.
QString idFromEntry(const QString& desktopID);

// The readable desktop entries of the user's applications folder, in name order.
QList<DesktopEntry> userEntries();
// Those of `entries` that start the AppImage at `path` (their Exec's program or TryExec is it).
QList<DesktopEntry> entriesFor(const QString& path, const QList<DesktopEntry>& entries);

// One AppImage: name, id and window class from the first desktop entry that starts it, else the
// name from the file.
LinuxApp read(const QString& path, const QList<DesktopEntry>& entries);

// The AppImages at the top level of folders(), each folder in name order.
QList<LinuxApp> list();

}  // namespace AppImages
