#include "apps/app_scanner.h"

#include <algorithm>

#include "apps/concurrently.h"
#include "apps/flatpak_apps.h"
#include "apps/leftover_sweep.h"
#include "apps/leftovers.h"
#include "apps/linux_app.h"
#include "apps/property_list.h"
#include "apps/sorted_entries.h"
#include "core/home.h"
#include "measure/walker.h"
#include "platform/xdg.h"

namespace {

bool stop(const Cancelled& cancelled) { return cancelled && cancelled(); }

// Every place searched for leftovers, with its folder: the Library's, then a Linux home's.
QList<std::pair<QString, QString>> placeFolders() {
    QList<std::pair<QString, QString>> out;
    for (const QString& place : Leftovers::places) out.append({place, Home::at(QStringLiteral("Library/") + place)});
    out.append({Leftovers::flatpakPlace, Home::at(Leftovers::flatpakPlace)});
    const QString desktopFolders[] = {Xdg::configHome(), Xdg::dataHome(), Xdg::cacheHome()};
    for (qsizetype i = 0; i < Leftovers::desktopPlaces.size(); ++i)
        out.append({Leftovers::desktopPlaces[i], desktopFolders[i]});
    return out;
}

void measure(QList<Leftover>& leftovers, const Cancelled& cancelled) {
    for (Leftover& l : leftovers)
        if (l.bytes < 0) l.bytes = Walker::size(l.path, false, cancelled).bytes;
}

void sortLeftovers(QList<Leftover>& leftovers) {
    std::stable_sort(leftovers.begin(), leftovers.end(), [](const Leftover& a, const Leftover& b) {
        if (a.confidence != b.confidence) return a.confidence < b.confidence;
        return a.bytes > b.bytes;
    });
}

}  // namespace

namespace AppScanner {

Bundle readBundle(const QString& bundlePath) {
    Bundle b{bundlePath, {}, {}, teamID(bundlePath)};
    // A bundle whose Info.plist is missing or cannot be read is still listed, with its file name
    // and an empty identifier, so that it can be uninstalled; nothing in the Library matches it.
    if (const auto info = PropertyList::read(bundlePath + QStringLiteral("/Contents/Info.plist"))) {
        b.bundleID = PropertyList::text(*info, QStringLiteral("CFBundleIdentifier")).value_or(QString());
        for (const char* key : {"CFBundleDisplayName", "CFBundleName"}) {
            b.name = PropertyList::text(*info, QLatin1String(key)).value_or(QString());
            if (!b.name.isEmpty()) break;
        }
    }
    if (b.name.isEmpty()) b.name = Leftovers::displayName(bundlePath);
    return b;
}

QList<Bundle> bundles(const SystemFolders& folders) {
    QList<Bundle> out;
    for (const QString& folder : {folders.applications, Home::at(QStringLiteral("Applications"))})
        for (const Walker::Entry& e : sortedEntries(folder))
            if (e.isDir && e.name.endsWith(QLatin1String(".app")))
                out.append(readBundle(folder + QLatin1Char('/') + e.name));
    return out;
}

QString teamID(const QString&) { return {}; }

std::optional<QDateTime> lastUsed(const QString&) { return std::nullopt; }

QString developer(const Bundle& bundle) {
    if (!bundle.team.isEmpty()) return bundle.team;
    return Leftovers::vendor(bundle.bundleID).value_or(QString());
}

Result scan(const Cancelled& cancelled, const SystemFolders& folders) {
    // The apps in listing order (ties between apps go to the earlier one): bundles, then the Linux apps.
    QList<InstalledApp> apps;
    QList<Leftovers::AppIdentity> identities;
    for (const Bundle& b : bundles(folders)) {
        apps.append(InstalledApp{b.name, b.bundleID, b.path, 0, lastUsed(b.path), developer(b), {}});
        identities.append({b.name, b.bundleID, b.team});
    }
    for (const LinuxApp& a : LinuxApps::list(folders)) {
        apps.append(a.record());
        identities.append(a.identity());
    }
    const QList<Leftovers::PreparedApp> prepared =
        Leftovers::prepare(identities, Leftovers::sharedVendors(identities));

    Leftovers::Sweep sweep;
    for (const auto& [place, folder] : placeFolders()) {
        if (stop(cancelled)) return {};
        for (const Walker::Entry& e : sortedEntries(folder)) Leftovers::take(e, place, folder, prepared, sweep);
    }
    // The filters look at names only, so they run first and nothing is measured that is not shown.
    Result result;
    result.orphans = Leftovers::keptOrphans(sweep.orphans, Leftovers::installedVendors(identities),
                                            FlatpakApps::stillInstalled(folders));
    for (qsizetype i = 0; i < apps.size(); ++i) apps[i].leftovers = sweep.byApp.value(i);
    result.apps = std::move(apps);

    // One task per app (and per orphan), each measured on one thread.
    InstalledApp* measured = result.apps.data();
    Orphan* orphans = result.orphans.data();
    const qsizetype appCount = result.apps.size();
    concurrently(appCount + result.orphans.size(), Walker::threadCount(), [&](qsizetype i) {
        if (i < appCount) {
            measured[i].appBytes = Walker::size(measured[i].path, false, cancelled).bytes;
            measure(measured[i].leftovers, cancelled);
        } else {
            measure(orphans[i - appCount].leftovers, cancelled);
        }
    });
    if (stop(cancelled)) return {};

    for (InstalledApp& app : result.apps) sortLeftovers(app.leftovers);
    for (Orphan& orphan : result.orphans) sortLeftovers(orphan.leftovers);
    std::stable_sort(result.apps.begin(), result.apps.end(),
                     [](const InstalledApp& a, const InstalledApp& b) { return a.total() > b.total(); });
    std::stable_sort(result.orphans.begin(), result.orphans.end(),
                     [](const Orphan& a, const Orphan& b) { return a.bytes() > b.bytes(); });
    return result;
}

}  // namespace AppScanner
