// One scan of the disk: the home walk with its early rows, the folders outside the home, the rule
// folders opened up to their items, the extra checks and the system's own figures.

#include "scan/scanner.h"

#include <sys/stat.h>

#include <chrono>

#include "core/checked.h"
#include "core/home.h"
#include "core/paths.h"
#include "measure/walker.h"
#include "platform/system_figures.h"
#include "scan/access.h"
#include "scan/catalogue.h"
#include "scan/extras.h"
#include "scan/probes.h"

namespace {

bool isFolder(const QString& path) {
    struct stat st;
    return ::lstat(Paths::toBytes(path).constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

// Files too small for a node of their own were summed into their folder; a row that lists its
// items needs them back, so they are read from one listing of the folder (nothing is walked).
void addLooseFiles(SpaceNode& node, std::optional<qint32> device) {
    qint64 kidsBytes = 0;
    QSet<QString> named;
    for (const SpaceNode& k : node.kids) {
        kidsBytes = Checked::add(kidsBytes, k.bytes);
        named.insert(k.name);
    }
    qint64 loose = Checked::sub(node.bytes, kidsBytes);
    if (loose <= 0) return;
    Walker::list(node.path, device, [&](const Walker::Entry& e) {
        if (!e.isFile || named.contains(e.name) || loose <= 0) return;
        // A hard-linked file may have been charged elsewhere: never hand out more than was summed.
        const qint64 bytes = std::min(e.allocated, loose);
        loose -= bytes;
        node.kids.append({e.name, node.path + QLatin1Char('/') + e.name, bytes, false, {}, e.modified, {}});
    });
    SpaceNode::sortBySize(node.kids);
}

// Every rule folder gets its items in the tree: a folder the walk only summed is listed, and one
// below the walk's depth is listed and attached with the folders on the way.
void expandRuleFolders(SpaceNode& home, WalkProgress& progress, const Cancelled& cancelled) {
    const std::optional<qint32> homeDevice = Walker::device(home.path);
    for (const Catalogue::Rule& rule : Catalogue::rules()) {
        for (const QString& relative : rule.paths) {
            if (cancelled && cancelled()) return;
            const QString path = Home::at(relative);
            // Links are never followed and other volumes never entered, as in the walk itself.
            if (!isFolder(path) || Walker::device(path) != homeDevice) continue;
            SpaceNode* node = home.find(path);
            if (node && !node->kids.isEmpty()) {
                if (rule.listParts) addLooseFiles(*node, homeDevice);
            } else if (node) {
                if (rule.listParts || rule.paths.size() >= 2) home.setKids(path, Walker::children(path, cancelled), false);
            } else {
                const QList<SpaceNode> kids = Walker::children(path, cancelled);
                qint64 bytes = 0;
                for (const SpaceNode& k : kids) bytes = Checked::add(bytes, k.bytes);
                progress.add(0, bytes);
                home.setKids(path, kids, true);
            }
        }
    }
}

}  // namespace

namespace Scanner {

const QStringList& outsideFolders() {
    static const QStringList folders{QStringLiteral("/Applications"), QStringLiteral("/opt/homebrew"),
                                     QStringLiteral("/usr/local"),    QStringLiteral("/Library/Developer"),
                                     QStringLiteral("/Library"),      QStringLiteral("/Users/Shared")};
    return folders;
}

QString trashFiles() { return Home::trashFolder() + QStringLiteral("/files"); }

QMap<QString, qint64> sizes(WalkProgress& progress, const Cancelled& cancelled) {
    QMap<QString, qint64> out;
    for (const QString& folder : outsideFolders()) {
        if (cancelled && cancelled()) break;
        if (!isFolder(folder)) continue;
        const WalkResult r = Walker::size(folder, true, cancelled);
        progress.add(r.files, r.bytes);
        out.insert(folder, r.bytes);
    }
    return out;
}

qint64 swapUsed() { return SystemFigures::swapUsed(); }

std::optional<qint64> volumeUsed(const QString& path) {
    const auto space = SystemFigures::space(path);
    if (!space || space->used < 1) return std::nullopt;
    return space->used;
}

std::optional<QString> userTempFolder() { return SystemFigures::userTempFolder(Home::path()); }

Volume volume() {
    const auto space = SystemFigures::space(Home::path());
    if (!space) return {};
    // Linux has no purgeable space: free for important use is plain free space.
    return {space->mountPoint, space->total, space->free, space->free};
}

ScanData scan(WalkProgress& progress, const Cancelled& cancelled, const EarlyReport& early) {
    const auto started = std::chrono::steady_clock::now();
    const auto stopped = [&] { return cancelled && cancelled(); };
    const QString home = Home::path();
    const bool fake = Home::isFake();
    ScanData data;
    data.fullDiskAccess = Access::fullDisk();

    EarlyRows rows(early);
    Walker::TreeOptions tree;
    tree.depth = treeDepth;
    tree.minFile = smallestFile;
    tree.progress = &progress;
    tree.cancelled = cancelled;
    tree.roots = [&](const QStringList& roots) { rows.start(roots); };
    if (early) tree.rootDone = [&](int index, const WalkResult& r) { rows.done(index, r.bytes); };
    data.home = Walker::tree(home, tree);
    data.home.name = QStringLiteral("Home");

    if (!fake && !stopped()) {
        data.outside = sizes(progress, cancelled);
        if (const auto temp = userTempFolder(); temp && !stopped())
            data.outside.insert(QStringLiteral("temp"), Walker::size(*temp, true, cancelled).bytes);
    }
    // A Trash kept outside the home (XDG_DATA_HOME elsewhere) is measured as a folder outside it.
    if (const QString files = trashFiles(); !Paths::isWithin(files, home) && isFolder(files) && !stopped())
        data.outside.insert(files, Walker::size(files, true, cancelled).bytes);
    if (!stopped()) expandRuleFolders(data.home, progress, cancelled);

    const QDateTime now = QDateTime::currentDateTimeUtc();
    const auto add = [&](std::optional<Finding> f) {
        if (f) data.extras.append(std::move(*f));
    };
    if (!stopped()) add(idleNodeModules(data.home, cancelled, 90, now));
    if (!stopped()) add(installers(home, installedAppNames(), now));
    if (!stopped()) add(unfinishedDownloads(home, now));
    if (!stopped()) add(macOSInstallers(applicationFolders().first(), now));
    if (!stopped()) add(unavailableSimulators());
    if (!fake && !stopped()) {
        data.snapshots = localSnapshots();
        data.swap = swapUsed();
        data.dataVolumeUsed = volumeUsed(QStringLiteral("/System/Volumes/Data"));
        data.vmVolumeUsed = volumeUsed(QStringLiteral("/System/Volumes/VM"));
    }
    data.files = progress.files();
    data.date = QDateTime::currentDateTimeUtc();
    data.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    return data;
}

}  // namespace Scanner
