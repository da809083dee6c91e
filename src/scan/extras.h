#pragma once
// The scan's own checks that are not catalogue rules: idle node_modules, installers and unfinished
// downloads in Downloads, macOS installers, desktop apps' own caches. Each gives one row, or nothing
// when it found nothing.

#include <QDateTime>
#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

#include "core/records.h"
#include "core/space_node.h"
#include "measure/walk_types.h"

namespace Scanner {

// The ids of the extra rows, in the order a scan makes them.
const QStringList& extraIDs();
// The extra row `id` with its texts and no items yet.
Finding extraRow(const QString& id);

// The code roots that exist, as absolute paths, in search order.
QStringList codeRoots();
// node_modules of projects nothing has touched for `days` days. Sizes come from the home tree where
// it holds the folder, so the walk already done is not repeated.
std::optional<Finding> idleNodeModules(const SpaceNode& home, const Cancelled& cancelled, int days,
                                       const QDateTime& now);

// Where apps are installed: /Applications and ~/Applications; on a home that is not the account's
// own, only its Applications folder, so a fixture home stands alone.
QStringList applicationFolders();
// Names of the installed apps (".app" entries, without the extension).
QStringList installedAppNames(const QStringList& folders = applicationFolders());
// The installed app an installer file belongs to, by its name: "Firefox 121.0.dmg" → "Firefox".
std::optional<QString> installedApp(const QString& installer, const QStringList& names);

std::optional<Finding> installers(const QString& home, const QStringList& installed, const QDateTime& now);
std::optional<Finding> unfinishedDownloads(const QString& home, const QDateTime& now);
// "Install macOS …" apps in `applications`.
std::optional<Finding> macOSInstallers(const QString& applications, const QDateTime& now);

// The cache folders (Cache, GPUCache, …) of Electron and Chromium-based apps in ~/.config/<App>,
// each a part named "App · Folder", sizes from the home tree. The apps `running` answers true for
// are left out; without it, the user's running programs decide.
std::optional<Finding> electronCaches(const SpaceNode& home, const QDateTime& now);
std::optional<Finding> electronCaches(const SpaceNode& home, const std::function<bool(const QString& app)>& running,
                                      const QDateTime& now);
// The cache folders of Flatpak apps, ~/.var/app/<id>/cache, one part per app id, sizes from the
// home tree. The ids in `running` are left out; without it, `flatpak ps` decides.
std::optional<Finding> flatpakCaches(const SpaceNode& home, const QDateTime& now);
std::optional<Finding> flatpakCaches(const SpaceNode& home, const QSet<QString>& running, const QDateTime& now);

}  // namespace Scanner
