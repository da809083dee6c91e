#pragma once
// Whether this machine knows an application by its identifier, installed somewhere Quarle does not
// scan: a desktop entry "ID.desktop" in the XDG application folders, or an installed Flatpak.

#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>

namespace KnownApps {

// $XDG_DATA_HOME/applications (default ~/.local/share/applications), then the "applications"
// folder of each of $XDG_DATA_DIRS (default /usr/local/share:/usr/share), in that order.
QStringList applicationFolders();

// A regular file (or a link to one) named id + ".desktop" in one of the folders.
bool hasDesktopEntry(const QString& id, const QStringList& folders);

// Application ids of the installed Flatpaks, from `flatpak list --app --columns=application`;
// empty when flatpak is not installed or fails.
QSet<QString> installedFlatpaks();

// A lookup for many questions in a row (one thread): the folders are decided once and the
// Flatpak list is read the first time a question is not settled by a desktop entry.
std::function<bool(const QString&)> lookup();

}  // namespace KnownApps
