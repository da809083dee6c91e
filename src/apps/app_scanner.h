#pragma once
// The Apps page's data: every installed app with its size and the items it left (in the Library,
// and in a Linux home's app folders), and the orphans, items of apps that are no longer installed.
// The apps are the ".app" bundles and the Linux apps the user can remove (Flatpaks, AppImages).

#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

#include "apps/system_folders.h"
#include "core/records.h"
#include "measure/walk_types.h"

namespace AppScanner {

struct Result {
    QList<InstalledApp> apps;
    QList<Orphan> orphans;

    bool operator==(const Result&) const = default;
};

// One app bundle as its Info.plist describes it, before anything is measured.
struct Bundle {
    QString path;
    QString name;
    QString bundleID;
    QString team;

    bool operator==(const Bundle&) const = default;
};

// Reads bundlePath + "/Contents/Info.plist". The name is the first non-empty of
// "CFBundleDisplayName", "CFBundleName" and the file name without ".app".
Bundle readBundle(const QString& bundlePath);

// The ".app" folders at the top level of the system's Applications folder, then of the home's,
// each folder in name order. Sub-folders are not searched.
QList<Bundle> bundles(const SystemFolders& folders = SystemFolders::current());

// The code-signing team. Linux has no code signatures, so there is none: the empty text.
QString teamID(const QString& bundlePath);
// When the app was last used. Linux keeps no such record: always nothing.
std::optional<QDateTime> lastUsed(const QString& bundlePath);
// Who made the app: its signing team where there is one, else the vendor of its bundle
// identifier ("com.example" of "com.example.Editor"), the one maker's name every well-formed
// bundle carries without a signature; empty when neither exists.
QString developer(const Bundle& bundle);

// Lists the apps (bundles, then the Linux apps), sorts the items of every place to them and to
// orphans, and measures everything.
// Apps are sorted by total size, their leftovers by confidence then size, the orphans by the size
// of all their items; all largest first, equal sizes in listing order. A scan cancelled part-way
// returns an empty result rather than a list with half-measured sizes.
Result scan(const Cancelled& cancelled = {}, const SystemFolders& folders = SystemFolders::current());

}  // namespace AppScanner
