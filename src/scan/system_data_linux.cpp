// What System Data holds on a Linux-shaped home: the system's own folders on the home's file
// system, the space kept for the administrator, and the parts of the home no slice shows. Each
// row says in one line what, if anything, the user can do about it.

#include <algorithm>

#include "core/checked.h"
#include "core/fmt.h"
#include "core/paths.h"
#include "scan/catalogue.h"
#include "scan/scanner.h"
#include "scan/system_data.h"

namespace {

using SystemData::atLeastZero;

// Rows whose folders are caches apps rebuild: "App caches" sums them.
const QStringList& cacheRowIDs() {
    static const QStringList ids{QStringLiteral("caches"),        QStringLiteral("xdgcache"),
                                 QStringLiteral("thumbnails"),    QStringLiteral("browsercaches"),
                                 QStringLiteral("shadercaches"),  QStringLiteral("electroncaches"),
                                 QStringLiteral("flatpakcaches")};
    return ids;
}

struct Area {
    qint64 bytes = 0;
    bool partial = false;
    QString largest;  // the folder with the most bytes
};

Area area(const LinuxSystem& s, const QString& id) {
    Area a;
    qint64 most = -1;
    for (const Scanner::SystemArea& sa : Scanner::systemAreas()) {
        if (sa.id != id) continue;
        for (const QString& folder : sa.folders) {
            const qint64 bytes = s.folders.value(folder, 0);
            a.bytes = Checked::add(a.bytes, bytes);
            a.partial = a.partial || s.partial.contains(folder);
            if (s.folders.contains(folder) && bytes > most) {
                most = bytes;
                a.largest = folder;
            }
        }
    }
    return a;
}

// The command that clears the package cache of the package manager that fills `folder`.
QString packageCommand(const QString& folder) {
    if (folder.contains(QLatin1String("dnf"))) return QStringLiteral("sudo dnf clean packages");
    if (folder.contains(QLatin1String("yum"))) return QStringLiteral("sudo yum clean packages");
    if (folder.contains(QLatin1String("pacman"))) return QStringLiteral("sudo paccache -r");
    if (folder.contains(QLatin1String("zypp"))) return QStringLiteral("sudo zypper clean");
    return QStringLiteral("sudo apt clean");
}

QString logsAction(const LinuxSystem& s) {
    if (s.journal && *s.journal > 0)
        return QStringLiteral("Logs the system keeps in /var/log; the journal takes %1 of them. "
                              "sudo journalctl --vacuum-size=500M trims it.")
            .arg(Fmt::bytes(*s.journal));
    return QStringLiteral("Logs the system keeps in /var/log. The system rotates them by itself.");
}

}  // namespace

namespace SystemData {

QList<SystemPart> linuxBreakdown(const ScanData& data, const QList<Finding>& findings, qint64 systemTotal) {
    const LinuxSystem& s = *data.linuxSystem;
    const SpaceNode& home = data.home;
    using B = Bucket;

    // The home, handed out once: the slices, then each row's folders; the rest is "other files".
    Claims claims(home);
    homeSlices(data, claims);
    qint64 caches = 0;
    QStringList cacheParts;
    for (const Finding& f : findings) {
        if (!cacheRowIDs().contains(f.id)) continue;
        caches = Checked::add(caches, f.bytes);
        for (const Part& p : f.parts) cacheParts.append(p.path);
    }
    claims.take(cacheParts);
    if (Paths::isWithin(Scanner::trashFiles(), home.path)) claims.take({Scanner::trashFiles()});
    const qint64 userFlatpak = claims.take({Catalogue::at(QStringLiteral(".local/share/flatpak"))});
    const qint64 ownData = claims.take({Catalogue::at(QStringLiteral(".config")), Catalogue::at(QStringLiteral(".local/share")),
                                        Catalogue::at(QStringLiteral(".local/state")), Catalogue::at(QStringLiteral(".var/app"))});
    const qint64 otherHome = atLeastZero(Checked::sub(home.bytes, claims.total()));

    const Area system = area(s, QStringLiteral("system"));
    Area logs = area(s, QStringLiteral("logs"));
    // Where the walk could not read all of /var/log, the journal's own figure is the better floor.
    if (logs.partial && s.journal) logs.bytes = std::max(logs.bytes, *s.journal);
    const Area packages = area(s, QStringLiteral("packages"));
    const Area flatpak = area(s, QStringLiteral("flatpak"));
    const Area snaps = area(s, QStringLiteral("snaps"));
    const Area temp = area(s, QStringLiteral("temp"));

    QList<SystemPart> rows{
        {QStringLiteral("App caches"), caches, Paint::mint, B::now, QStringLiteral("Clear in Clean. Apps rebuild them."), false},
        {QStringLiteral("Linux itself"), system.bytes, Paint::stone, B::keep,
         QStringLiteral("Programs and libraries in /usr, /opt and /boot. Your package manager looks after these."),
         system.partial},
        {QStringLiteral("System logs"), logs.bytes, Paint::pink, B::keep, logsAction(s), logs.partial},
        {QStringLiteral("Package caches"), packages.bytes, Paint::peach, B::keep,
         QStringLiteral("Packages your package manager downloaded to install and update. %1 clears them.")
             .arg(packageCommand(packages.largest)),
         packages.partial},
        {QStringLiteral("Flatpak apps and runtimes"), Checked::add(flatpak.bytes, userFlatpak), Paint::sky, B::keep,
         QStringLiteral("Apps installed with Flatpak and the runtimes they share. flatpak uninstall --unused removes "
                        "runtimes no app needs."),
         flatpak.partial},
        {QStringLiteral("Snaps"), snaps.bytes, Paint::aqua, B::keep,
         QStringLiteral("Snap packages and the older versions snapd keeps of each. sudo snap set system "
                        "refresh.retain=2 keeps fewer."),
         snaps.partial},
        {QStringLiteral("Swap files"), s.swapFiles, Paint::butter, B::keep,
         QStringLiteral("Memory on disk, at the size your system set for it."), false},
        {QStringLiteral("Temporary files"), temp.bytes, Paint::butter, B::keep,
         QStringLiteral("Scratch files apps and the system keep while they work. The system clears them at restart "
                        "or after a few days."),
         temp.partial},
        {QStringLiteral("Reserved for the administrator"), s.reserved, Paint::stone, B::keep,
         QStringLiteral("Space the file system keeps back so the system still works when the disk is full. Only the "
                        "administrator can use it."),
         false},
        {QStringLiteral("Apps' own data"), ownData, Paint::lavender, B::keep,
         QStringLiteral("Settings and data apps keep in ~/.config, ~/.local and ~/.var. They stay when you remove an "
                        "app; remove its folder too if you won't use it again."),
         false},
        {QStringLiteral("Other files in your home"), otherHome, Paint::sand, B::keep,
         QStringLiteral("Hidden folders tools keep (names starting with a dot) and files outside your user folders. "
                        "Browse them in Storage."),
         false},
    };
    qint64 accounted = 0;
    for (const SystemPart& row : rows) accounted = Checked::add(accounted, row.bytes);
    rows.append({QStringLiteral("Not measured"), atLeastZero(Checked::sub(systemTotal, accounted)), Paint::stone, B::keep,
                 s.measured ? QStringLiteral("Folders only the administrator can read: other users' files, system "
                                             "databases in /var, containers and /etc.")
                            : QStringLiteral("The system's own folders and other users' files, which Quarle does not "
                                             "measure for another home folder."),
                 true});
    rows.removeIf([](const SystemPart& p) { return p.bytes <= 0; });
    std::stable_sort(rows.begin(), rows.end(), [](const SystemPart& a, const SystemPart& b) { return a.bytes > b.bytes; });
    return rows;
}

}  // namespace SystemData
