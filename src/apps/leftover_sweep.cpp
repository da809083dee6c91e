#include "apps/leftover_sweep.h"

namespace Leftovers {

void take(const Walker::Entry& entry, const QString& place, const QString& placeFolder,
          const QList<PreparedApp>& apps, Sweep& into) {
    if (!entry.isDir && !entry.isFile) return;
    const QString path = placeFolder + QLatin1Char('/') + entry.name;
    const qint64 bytes = entry.isFile ? entry.allocated : -1;

    if (const auto found = owner(entry.name, place, apps)) {
        const Match& m = found->second;
        into.byApp[apps[found->first].app.bundleID].append(Leftover{path, bytes, m.why, m.confidence});
        return;
    }
    if (!looksLikeBundleID(entry.name)) return;
    const QString key = stem(entry.name);
    const QString lower = key.toLower();
    if (lower.startsWith(QLatin1String("com.apple.")) || lower.startsWith(QLatin1String("group.com.apple.")))
        return;
    auto at = into.orphanAt.constFind(key);
    if (at == into.orphanAt.constEnd()) {
        at = into.orphanAt.insert(key, into.orphans.size());
        into.orphans.append(OrphanGroup{key, {}, false});
    }
    OrphanGroup& group = into.orphans[*at];
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
        if (const auto v = vendor(group.key); v && installedVendors.contains(v->toLower())) continue;
        if (platformKnows && platformKnows(group.key)) continue;
        out.append(Orphan{group.key, group.key, group.items});
    }
    return out;
}

}  // namespace Leftovers
