// One scan of the disk: the home walk with its early rows, the folders outside the home, the rule
// folders opened up to their items, the extra checks and the system's own figures.

#include "scan/scanner.h"

#include <sys/stat.h>

#include <algorithm>
#include <chrono>

#include "core/checked.h"
#include "core/home.h"
#include "core/paths.h"
#include "measure/walker.h"
#include "platform/system_figures.h"
#include "platform/user_dirs.h"
#include "platform/xdg.h"
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

// Every rule folder that offers its items gets them in the tree: a folder the walk only summed is
// listed, and one below the walk's depth is listed and attached with the folders on the way.
// Shallower folders go first, so that a rule folder inside another one's finds it opened up.
void expandRuleFolders(ScanData& data, WalkProgress& progress, const Cancelled& cancelled) {
    QList<std::pair<const Catalogue::Rule*, QString>> folders;
    for (const Catalogue::Rule& rule : Catalogue::rules())
        for (const QString& relative : rule.paths) folders.append({&rule, Catalogue::at(relative)});
    const auto depth = [](const QString& path) { return path.count(QLatin1Char('/')); };
    std::stable_sort(folders.begin(), folders.end(), [&](const auto& a, const auto& b) { return depth(a.second) < depth(b.second); });
    const std::optional<qint32> homeDevice = Walker::device(data.home.path);
    const std::optional<qint32> cacheDevice = data.cache.path.isEmpty() ? std::nullopt : Walker::device(data.cache.path);
    for (const auto& [rule, path] : folders) {
        if (cancelled && cancelled()) return;
        const bool inCache = !data.cache.path.isEmpty() && data.cache.contains(path);
        SpaceNode& tree = inCache ? data.cache : data.home;
        const std::optional<qint32> device = inCache ? cacheDevice : homeDevice;
        // Links are never followed and other volumes never entered, as in the walk itself.
        if (!tree.contains(path) || !isFolder(path) || Walker::device(path) != device) continue;
        SpaceNode* node = tree.find(path);
        if (node && !node->kids.isEmpty()) {
            if (rule->listParts) addLooseFiles(*node, device);
        } else if (node) {
            // A rule that offers its folders whole needs no items: the summed folder is not walked again.
            if (rule->listParts) tree.setKids(path, Walker::children(path, cancelled), false);
        } else {
            const QList<SpaceNode> kids = Walker::children(path, cancelled);
            qint64 bytes = 0;
            for (const SpaceNode& k : kids) bytes = Checked::add(bytes, k.bytes);
            progress.add(0, bytes);
            tree.setKids(path, kids, true);
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

LinuxSystem linuxSystem(const QString& home, bool fake, WalkProgress& progress, const Cancelled& cancelled) {
    LinuxSystem s;
    // The system's own folders are read for the user's own home, and for a fixture home only when
    // QUARLE_SYSTEM_ROOT names a system for it (a fixture's, or "/" for this machine's).
    if (!fake || SystemFigures::givenSystemRoot())
        s = measureSystem(home, SystemFigures::systemRoot(), progress, cancelled);
    s.userDirs = UserDirs::read(home, Xdg::configHome() + QStringLiteral("/user-dirs.dirs"));
    if (const auto space = SystemFigures::space(home)) s.reserved = space->reserved;
    return s;
}

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

    const bool linuxHome = linuxShaped(home);

    EarlyRows rows(early);
    Walker::TreeOptions tree;
    tree.depth = treeDepth;
    tree.minFile = smallestFile;
    tree.progress = &progress;
    tree.cancelled = cancelled;
    tree.roots = [&](const QStringList& roots) { rows.start(roots); };
    if (early) tree.rootDone = [&](int index, const WalkResult& r) { rows.done(index, r.bytes); };
    QHash<QString, bool> sharing;
    tree.sharing = &sharing;
    data.home = Walker::tree(home, tree);
    data.home.name = QStringLiteral("Home");
    // A cache folder kept outside the home is walked as a tree of its own; its roots join the rows.
    if (const QString cache = Catalogue::cacheFolder(); !Paths::isWithin(cache, home) && isFolder(cache) && !stopped()) {
        int first = 0;
        tree.roots = [&](const QStringList& roots) { first = rows.more(roots); };
        if (early) tree.rootDone = [&](int index, const WalkResult& r) { rows.done(first + index, r.bytes); };
        data.cache = Walker::tree(cache, tree);
        data.cache.name = QStringLiteral("Cache");
    }

    if (linuxHome) {
        data.linuxSystem = linuxSystem(home, fake, progress, cancelled);
    } else if (!fake && !stopped()) {
        data.outside = sizes(progress, cancelled);
        if (const auto temp = userTempFolder(); temp && !stopped())
            data.outside.insert(QStringLiteral("temp"), Walker::size(*temp, true, cancelled).bytes);
    }
    // A Trash kept outside the home (XDG_DATA_HOME elsewhere) is measured as a folder outside it.
    if (const QString files = trashFiles(); !Paths::isWithin(files, home) && isFolder(files) && !stopped())
        data.outside.insert(files, Walker::size(files, true, cancelled).bytes);
    data.trashFolderBlocks = Walker::ownBlocks(trashFiles());
    if (!stopped()) expandRuleFolders(data, progress, cancelled);

    const QDateTime now = QDateTime::currentDateTimeUtc();
    const auto add = [&](std::optional<Finding> f) {
        if (f) data.extras.append(std::move(*f));
    };
    if (!stopped()) add(idleNodeModules(data.home, cancelled, 90, now));
    if (!stopped()) add(installers(home, installedAppNames(), now));
    if (!stopped()) add(unfinishedDownloads(home, now));
    if (!stopped()) add(macOSInstallers(applicationFolders().first(), now));
    if (!stopped()) add(unavailableSimulators());
    if (!stopped()) add(electronCaches(data.home, now));
    if (!stopped()) add(flatpakCaches(data.home, now));
    // Each offered item that may hold files sharing blocks is asked which of its blocks other files
    // hold too, so that its row does not promise them. Items outside the walked trees are asked
    // whenever the walks met shared blocks at all.
    const auto walked = [&](const QString& path) {
        return Paths::isWithin(path, home) || (!data.cache.path.isEmpty() && Paths::isWithin(path, data.cache.path));
    };
    if (!sharing.isEmpty())
        for (const QString& path : offeredPaths(data)) {
            if (stopped()) break;
            if (walked(path) && !Walker::mayHoldSharing(sharing, path)) continue;
            if (const qint64 held = Walker::heldElsewhere(path, cancelled); held > 0) data.heldElsewhere.insert(path, held);
        }
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
