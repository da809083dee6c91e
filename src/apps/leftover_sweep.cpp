#include "apps/leftover_sweep.h"

#include "measure/walker.h"

namespace Leftovers {

namespace {

bool holdsAnything(const QString& folder) {
    bool any = false;
    Walker::list(folder, std::nullopt, [&](const Walker::Entry&) { any = true; });
    return any;
}

OrphanGroup& groupOf(const QString& key, Sweep& into) {
    auto at = into.orphanAt.constFind(key);
    if (at == into.orphanAt.constEnd()) {
        at = into.orphanAt.insert(key, into.orphans.size());
        into.orphans.append(OrphanGroup{key, {}, false, false});
    }
    return into.orphans[*at];
}

}  // namespace

void take(const Walker::Entry& entry, const QString& place, const QString& placeFolder,
          const QList<PreparedApp>& apps, Sweep& into) {
    if (!entry.isDir && !entry.isFile) return;
    const bool desktop = desktopPlaces.contains(place);
    if (desktop && desktopSharedEntries.contains(entry.name)) return;
    const QString path = placeFolder + QLatin1Char('/') + entry.name;
    const qint64 bytes = entry.isFile ? entry.allocated : -1;

    if (const auto found = owner(entry.name, place, apps)) {
        const Match& m = found->second;
        into.byApp[found->first].append(Leftover{path, bytes, m.why, m.confidence});
        return;
    }
    if (desktop) return;
    if (place == flatpakPlace) {
        if (!entry.isDir) return;
        OrphanGroup& group = groupOf(entry.name, into);
        group.items.append(Leftover{path, bytes, flatpakOrphanWhy, Confidence::sure});
        group.flatpak = true;
        // Flatpak makes cache, config and data for every app it starts; only what the app itself
        // wrote into them tells that it was used. Its cache alone is not worth listing.
        if (holdsAnything(path + QStringLiteral("/data")) || holdsAnything(path + QStringLiteral("/config")))
            group.ranHere = true;
        return;
    }
    if (!looksLikeBundleID(entry.name)) return;
    const QString key = stem(entry.name);
    const QString lower = key.toLower();
    if (lower.startsWith(QLatin1String("com.apple.")) || lower.startsWith(QLatin1String("group.com.apple.")))
        return;
    OrphanGroup& group = groupOf(key, into);
    group.items.append(Leftover{path, bytes, orphanWhy, Confidence::likely});
    // Judged by the place rather than by searching the whole path, so that a home folder that
    // itself lies under a folder named "Preferences" proves nothing.
    if (evidencePlaces.contains(place)) group.ranHere = true;
}

QSet<QString> installedVendors(const QList<AppIdentity>& apps) {
    QSet<QString> out;
    for (const AppIdentity& app : apps)
        if (const auto v = vendor(app.bundleID)) out.insert(v->toLower());
    return out;
}

QList<Orphan> keptOrphans(const QList<OrphanGroup>& groups, const QSet<QString>& installedVendors,
                          const std::function<bool(const QString&)>& platformKnows) {
    QList<Orphan> out;
    for (const OrphanGroup& group : groups) {
        if (!group.ranHere) continue;
        if (const auto v = vendor(group.key); !group.flatpak && v && installedVendors.contains(v->toLower())) continue;
        if (platformKnows && platformKnows(group.key)) continue;
        out.append(Orphan{group.key, group.key, group.items});
    }
    return out;
}

}  // namespace Leftovers
