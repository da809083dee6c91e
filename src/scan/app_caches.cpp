// The caches desktop apps keep in folders of their own rather than in the cache folder: Electron
// and Chromium-based apps in ~/.config/<App>, Flatpak apps in ~/.var/app/<id>/cache. Sizes come
// from the home tree, so nothing is walked again; a running app's caches are never offered.

#include <QSet>

#include "core/fmt.h"
#include "core/paths.h"
#include "measure/walker.h"
#include "platform/running_apps.h"
#include "platform/running_programs.h"
#include "scan/catalogue.h"
#include "scan/extras.h"
#include "scan/rows.h"

namespace {

Part partOf(const SpaceNode& node, const QString& name, const QDateTime& now) {
    return {name, node.path, node.bytes, Rows::agoNote(QStringLiteral("changed"), node.modified, now), node.modified};
}

// Each app folder with the cache folders inside it that hold something.
QList<std::pair<const SpaceNode*, QList<const SpaceNode*>>> electronApps(const SpaceNode& home) {
    QList<std::pair<const SpaceNode*, QList<const SpaceNode*>>> apps;
    const SpaceNode* config = home.find(home.path + QStringLiteral("/.config"));
    if (!config) return apps;
    for (const SpaceNode& app : config->kids) {
        QList<const SpaceNode*> caches;
        for (const SpaceNode& kid : app.kids)
            if (kid.isDir && kid.bytes > 0 && Catalogue::electronCacheFolders().contains(kid.name)) caches.append(&kid);
        if (!caches.isEmpty()) apps.append({&app, caches});
    }
    return apps;
}

// Each Flatpak app folder's cache folder that holds something.
QList<const SpaceNode*> flatpakCacheFolders(const SpaceNode& home) {
    QList<const SpaceNode*> caches;
    const SpaceNode* apps = home.find(home.path + QStringLiteral("/.var/app"));
    if (!apps) return caches;
    for (const SpaceNode& app : apps->kids)
        for (const SpaceNode& kid : app.kids)
            if (kid.isDir && kid.name == QLatin1String("cache") && kid.bytes > 0) caches.append(&kid);
    return caches;
}

}  // namespace

namespace Scanner {

std::optional<Finding> electronCaches(const SpaceNode& home, const QDateTime& now) {
    const auto apps = electronApps(home);
    if (apps.isEmpty()) return std::nullopt;  // /proc is read only when there is something to offer
    const QList<RunningPrograms::Program> programs = RunningPrograms::list();
    return electronCaches(home, [&](const QString& app) { return RunningPrograms::runs(app, programs); }, now);
}

std::optional<Finding> electronCaches(const SpaceNode& home, const std::function<bool(const QString&)>& running,
                                      const QDateTime& now) {
    Finding f = extraRow(QStringLiteral("electroncaches"));
    qint64 offered = 0;
    for (const auto& [app, caches] : electronApps(home)) {
        if (running(app->name)) continue;
        ++offered;
        for (const SpaceNode* cache : caches) {
            f.parts.append(partOf(*cache, app->name + QStringLiteral(" · ") + cache->name, now));
            f.partial = f.partial || cache->note == Walker::partlyLocked;
        }
    }
    const QString config = Fmt::path(home.path + QStringLiteral("/.config"));
    auto row = Rows::finish(std::move(f), config, QStringLiteral("folder"));
    if (row) row->place = config + QStringLiteral(" · ") + Fmt::count(offered, QStringLiteral("app"));
    return row;
}

std::optional<Finding> flatpakCaches(const SpaceNode& home, const QDateTime& now) {
    if (flatpakCacheFolders(home).isEmpty()) return std::nullopt;  // flatpak is asked only when needed
    return flatpakCaches(home, RunningApps::ids(), now);
}

std::optional<Finding> flatpakCaches(const SpaceNode& home, const QSet<QString>& running, const QDateTime& now) {
    Finding f = extraRow(QStringLiteral("flatpakcaches"));
    for (const SpaceNode* cache : flatpakCacheFolders(home)) {
        const QString id = Paths::lastComponent(Paths::parentOf(cache->path));
        if (running.contains(id)) continue;
        f.parts.append(partOf(*cache, id, now));
        f.partial = f.partial || cache->note == Walker::partlyLocked;
    }
    return Rows::finish(std::move(f), Fmt::path(home.path + QStringLiteral("/.var/app")) + QStringLiteral(" · "),
                        QStringLiteral("app"));
}

}  // namespace Scanner
