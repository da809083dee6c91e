// The size tree of a folder: its top levels listed exactly, each folder below them summed by the
// parallel walk. The exact levels are listed level by level on the walk's threads too, so that a
// cold disk is kept busy there as well.

#include <dirent.h>
#include <unistd.h>

#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

#include "core/checked.h"
#include "core/paths.h"
#include "measure/charging.h"
#include "measure/dir_listing.h"
#include "measure/dir_node.h"
#include "measure/shared_walk.h"
#include "measure/walker.h"
#include "measure/yielding.h"

namespace {

// One node of the tree under construction; every node comes after its parent in the flat list.
struct Skel {
    QString name;
    QString path;
    int parent = -1;
    bool isDir = false;
    qint64 bytes = 0;
    qint64 modified = Tally::noDate;
    bool denied = false;
};

// What listing one exact folder found.
struct Listed {
    struct Kid {
        std::string name;
        bool isDir = false;
        qint64 bytes = 0;
        qint64 modified = Tally::noDate;
        DirNode* node = nullptr;  // folders only
    };
    bool denied = false;
    bool shares = false;  // a file in it shares blocks with other files
    qint64 folded = 0;  // files too small for a node of their own
    std::vector<Kid> kids;
    Tally seen;  // every file counted, for the progress counters
};

struct ExactContext {
    std::optional<qint32> device;
    Dedupe* dedupe;
    qint64 minFile;
    const QSet<QString>* keepFiles;
};

Listed listExact(DirNode* node, const QString& folder, const ExactContext& cx) {
    Listed out;
    const int fd = DirNodes::open(node);
    if (fd < 0) {
        out.denied = true;
        DirNodes::release(node);
        return out;
    }
    Charging::Folder here{fd, 0, false};
    if (DirListing::Stat self; DirListing::statOpen(fd, self)) {
        here = Charging::folder(*cx.dedupe, fd, self);
        const qint64 own = Charging::ownBlocks(*cx.dedupe, self);
        out.folded = Checked::add(out.folded, own);
        out.seen.bytes = Checked::add(out.seen.bytes, own);
    }
    const bool complete = DirListing::forEach(fd, [&](const DirListing::RawEntry& e) {
        if (e.type != DT_DIR && e.type != DT_REG && e.type != DT_UNKNOWN) return;
        DirListing::Stat st;
        if (!DirListing::statAt(fd, e.name, st)) return;
        const qint64 modified = st.hasModified ? st.modified : Tally::noDate;
        if (st.isDir) {
            if ((cx.device && st.device != *cx.device) || st.mountRoot) return;  // another mount: not entered
            out.kids.push_back({std::string(e.name, e.length), true, 0, modified,
                                DirNodes::child(node, e.name, e.length)});
            return;
        }
        if (!st.isFile) return;
        const qint64 charge = Charging::file(*cx.dedupe, here, e.name, st, out.shares);
        out.seen.bytes = Checked::add(out.seen.bytes, charge);
        ++out.seen.files;
        const bool ownNode =
            st.allocated >= cx.minFile ||
            (!cx.keepFiles->isEmpty() &&
             cx.keepFiles->contains(folder + QLatin1Char('/') + Paths::fromBytes(e.name, qsizetype(e.length))));
        if (ownNode)
            out.kids.push_back({std::string(e.name, e.length), false, charge, modified, nullptr});
        else
            out.folded = Checked::add(out.folded, charge);
    });
    if (!complete) out.denied = true;
    bool hasSubfolders = false;
    for (const Listed::Kid& k : out.kids) hasSubfolders |= k.isDir;
    DirNodes::finish(node, fd, hasSubfolders);
    return out;
}

// Runs body(i) for i in [0, n) on up to `threads` threads, the caller's among them.
template <typename Body>
void parallelFor(std::size_t n, int threads, Body&& body) {
    std::atomic<std::size_t> next{0};
    auto run = [&] {
        Yielding::lowerThisThread();
        for (std::size_t i; (i = next.fetch_add(1)) < n;) body(i);
    };
    std::vector<std::thread> helpers;
    const std::size_t extra = std::min<std::size_t>(std::size_t(std::max(threads, 1)), n);
    for (std::size_t t = 1; t < extra; ++t) {
        try {
            helpers.emplace_back(run);
        } catch (const std::system_error&) {
            break;
        }
    }
    run();
    for (std::thread& t : helpers) t.join();
}

SpaceNode toSpaceNode(const std::vector<Skel>& skels, const std::vector<std::vector<int>>& kidsOf, int at) {
    const Skel& s = skels[std::size_t(at)];
    SpaceNode n;
    n.name = s.name;
    n.path = s.path;
    n.bytes = s.bytes;
    n.isDir = s.isDir;
    if (s.denied) n.note = Walker::partlyLocked;
    if (s.modified != Tally::noDate) n.modified = dateFromSeconds(s.modified);
    for (int k : kidsOf[std::size_t(at)]) n.kids.append(toSpaceNode(skels, kidsOf, k));
    SpaceNode::sortBySize(n.kids);
    return n;
}

}  // namespace

namespace Walker {

SpaceNode tree(const QString& path, const TreeOptions& options) {
    Dedupe dedupe;
    const ExactContext cx{device(path), &dedupe, options.minFile, &options.keepFiles};
    std::vector<Skel> skels;
    skels.push_back({Paths::lastComponent(path), path, -1, true, 0, Tally::noDate, false});

    std::vector<int> level{0};
    std::vector<DirNode*> levelNodes{DirNodes::root(Paths::toBytes(path).toStdString())};
    std::vector<int> frontier;
    std::vector<DirNode*> frontierNodes;
    std::atomic<bool> stop{false};
    std::atomic<int> folders{0};

    for (int depthNow = 0; !level.empty(); ++depthNow) {
        std::vector<Listed> listed(level.size());
        parallelFor(level.size(), threadCount(), [&](std::size_t i) {
            if (!stop && options.cancelled && (folders.fetch_add(1) + 1) % 128 == 0 && options.cancelled())
                stop = true;
            if (stop) {
                DirNodes::release(levelNodes[i]);
                return;
            }
            listed[i] = listExact(levelNodes[i], skels[std::size_t(level[i])].path, cx);
            if (options.progress) options.progress->add(listed[i].seen.files, listed[i].seen.bytes);
        });

        std::vector<int> nextLevel;
        std::vector<DirNode*> nextNodes;
        for (std::size_t i = 0; i < level.size(); ++i) {
            const int at = level[i];
            skels[std::size_t(at)].denied = skels[std::size_t(at)].denied || listed[i].denied;
            skels[std::size_t(at)].bytes = Checked::add(skels[std::size_t(at)].bytes, listed[i].folded);
            if (listed[i].shares && options.sharing) options.sharing->insert(skels[std::size_t(at)].path, false);
            for (Listed::Kid& kid : listed[i].kids) {
                const QString name = Paths::fromBytes(kid.name.data(), qsizetype(kid.name.size()));
                const QString kidPath = skels[std::size_t(at)].path + QLatin1Char('/') + name;
                skels.push_back({name, kidPath, at, kid.isDir, kid.bytes, kid.modified, false});
                if (!kid.isDir) continue;
                const bool exact = depthNow + 1 < options.depth;
                (exact ? nextLevel : frontier).push_back(int(skels.size()) - 1);
                (exact ? nextNodes : frontierNodes).push_back(kid.node);
            }
        }
        level = std::move(nextLevel);
        levelNodes = std::move(nextNodes);
        if (stop) break;
    }

    if (stop) {  // cancelled: the caller throws the tree away
        for (DirNode* n : levelNodes) DirNodes::release(n);
        for (DirNode* n : frontierNodes) DirNodes::release(n);
        frontierNodes.clear();
    }

    if (!stop) {
        if (options.roots) {
            QStringList paths;
            for (int at : frontier) paths.append(skels[std::size_t(at)].path);
            options.roots(paths);
        }
        SharedWalk::Options walk;
        walk.device = cx.device;
        walk.cancelled = options.cancelled;
        walk.progress = options.progress;
        walk.dedupe = &dedupe;
        walk.done = options.rootDone;
        const QList<WalkResult> totals = SharedWalk(frontierNodes, std::move(walk)).runEach();
        for (std::size_t i = 0; i < frontier.size(); ++i) {
            Skel& s = skels[std::size_t(frontier[i])];
            s.bytes = Checked::add(s.bytes, totals[qsizetype(i)].bytes);
            if (totals[qsizetype(i)].denied >= 1) s.denied = true;
            if (totals[qsizetype(i)].shares && options.sharing) options.sharing->insert(s.path, true);
        }
    }

    // Roll sizes and "partly locked" up: children come after their parents, so one pass suffices.
    for (std::size_t i = skels.size() - 1; i >= 1; --i) {
        Skel& parent = skels[std::size_t(skels[i].parent)];
        parent.bytes = Checked::add(parent.bytes, skels[i].bytes);
        parent.denied = parent.denied || skels[i].denied;
    }
    std::vector<std::vector<int>> kidsOf(skels.size());
    for (std::size_t i = 1; i < skels.size(); ++i) kidsOf[std::size_t(skels[i].parent)].push_back(int(i));
    return toSpaceNode(skels, kidsOf, 0);
}

bool mayHoldSharing(const QHash<QString, bool>& sharing, const QString& path) {
    const QString parent = Paths::parentOf(path);
    for (auto it = sharing.cbegin(); it != sharing.cend(); ++it) {
        const QString& folder = it.key();
        if (Paths::isWithin(folder, path)) return true;  // the item holds the folder
        // Inside a folder walked whole, or a file of a folder whose own files share.
        if (Paths::isWithin(path, folder) && (it.value() || folder == parent)) return true;
    }
    return false;
}

QList<SpaceNode> children(const QString& path, const Cancelled& cancelled,
                          const std::function<bool(const QString&)>& skip) {
    const std::optional<qint32> dev = device(path);
    if (!dev) return {};
    DirNode* folder = DirNodes::root(Paths::toBytes(path).toStdString());
    const int fd = DirNodes::open(folder);
    if (fd < 0) {
        DirNodes::release(folder);
        return {};
    }
    Dedupe dedupe;
    Charging::Folder here{fd, 0, false};
    if (DirListing::Stat self; DirListing::statOpen(fd, self)) here = Charging::folder(dedupe, fd, self);
    QList<SpaceNode> nodes;
    std::vector<DirNode*> subfolders;
    QList<SpaceNode> folderNodes;
    DirListing::forEach(fd, [&](const DirListing::RawEntry& e) {
        if (e.type != DT_DIR && e.type != DT_REG && e.type != DT_UNKNOWN) return;
        DirListing::Stat st;
        if (!DirListing::statAt(fd, e.name, st)) return;
        if (!st.isDir && !st.isFile) return;
        SpaceNode n;
        n.name = Paths::fromBytes(e.name, qsizetype(e.length));
        if (skip && skip(n.name)) return;
        n.path = path + QLatin1Char('/') + n.name;
        n.isDir = st.isDir;
        if (st.hasModified) n.modified = dateFromSeconds(st.modified);
        if (st.isFile) {
            bool shares = false;
            n.bytes = Charging::file(dedupe, here, e.name, st, shares);
            nodes.append(std::move(n));
        } else if (st.device == *dev && !st.mountRoot) {
            subfolders.push_back(DirNodes::child(folder, e.name, e.length));
            folderNodes.append(std::move(n));
        }
    });
    DirNodes::finish(folder, fd, !subfolders.empty());

    SharedWalk::Options walk;
    walk.device = dev;
    walk.cancelled = cancelled;
    walk.dedupe = &dedupe;
    const QList<WalkResult> totals = SharedWalk(subfolders, std::move(walk)).runEach();
    for (qsizetype i = 0; i < folderNodes.size(); ++i) {
        folderNodes[i].bytes = totals[i].bytes;
        if (totals[i].denied >= 1) folderNodes[i].note = partlyLocked;
        nodes.append(std::move(folderNodes[i]));
    }
    SpaceNode::sortBySize(nodes);
    return nodes;
}

}  // namespace Walker
