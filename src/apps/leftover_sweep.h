#pragma once
// The per-entry rule that sorts every top-level entry of the places (the Library's, a Linux home's)
// to the app that owns it or to an orphan group, and the filters that decide which orphan groups
// are shown.

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <functional>

#include "apps/leftovers.h"
#include "core/records.h"
#include "measure/walk_types.h"

namespace Leftovers {

// Items that look like the leftovers of one app that is not installed, keyed by their stem.
struct OrphanGroup {
    QString key;
    QList<Leftover> items;
    bool ranHere = false;  // an item lies where only a running app writes (see evidencePlaces)
    bool flatpak = false;  // an item is a Flatpak app's own folder (in flatpakPlace)

    bool operator==(const OrphanGroup&) const = default;
};

// What the per-entry rule gathered over the Library places. A folder's size is -1 until measured.
struct Sweep {
    QHash<qsizetype, QList<Leftover>> byApp;  // index of the app → its leftovers, in listing order
    QList<OrphanGroup> orphans;             // in the order first seen
    QHash<QString, qsizetype> orphanAt;     // key → index in `orphans`
};

// Places where an app of that identifier must really have run to leave something.
inline const QStringList evidencePlaces{QStringLiteral("Preferences"), QStringLiteral("Preferences/ByHost"),
                                        QStringLiteral("Containers"), QStringLiteral("Saved Application State"),
                                        QStringLiteral("HTTPStorages")};

inline const QString orphanWhy = QStringLiteral("Bundle ID of an app that isn't installed");
inline const QString flatpakOrphanWhy = QStringLiteral("Flatpak data of an app that isn't installed");

// Sorts one entry of the place (one of `places`, `flatpakPlace` or `desktopPlaces`) whose folder
// is `placeFolder`. Anything that is neither a folder nor a regular file (a symbolic link) is left
// alone, and so are the desktop's shared entries. Only the Library and `flatpakPlace` have
// orphans: a folder of ~/.var/app that no installed app owns is its app's whole data (`sure`),
// kept when its "data" or "config" folder holds anything.
void take(const Walker::Entry& entry, const QString& place, const QString& placeFolder,
          const QList<PreparedApp>& apps, Sweep& into);

// The vendors of the installed apps, lower-cased.
QSet<QString> installedVendors(const QList<AppIdentity>& apps);

// The orphan groups worth showing: with evidence that the app ran, not of a vendor with an
// installed app (a helper of that app, most likely; not asked of a Flatpak's folder, which is
// always one app's), and not of an app the platform still knows elsewhere (`platformKnows(bundleID)`).
QList<Orphan> keptOrphans(const QList<OrphanGroup>& groups, const QSet<QString>& installedVendors,
                          const std::function<bool(const QString&)>& platformKnows);

}  // namespace Leftovers
