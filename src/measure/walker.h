#pragma once
// Measures how much disk space files and folders really occupy: allocated blocks, a folder's own
// and each hard-linked file's once, never following a symbolic link, never entering another volume.
// Every size in Quarle comes from here.

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <utility>

#include "core/space_node.h"
#include "measure/dedupe.h"
#include "measure/progress.h"
#include "measure/walk_types.h"

namespace Walker {

// Threads of a parallel walk. Eight: a cold walk waits on the disk, and on two cores eight threads
// walked 1.5x faster than two cold and as fast warm (four were in between cold).
int threadCount();

// Lists one folder, calling `body` per entry in the order the file system gives them. With a
// `device`, folders on another device are left out. False when the folder could not be opened or
// read (entries delivered before a failed read stay delivered).
bool list(const QString& path, std::optional<qint32> device,
          const std::function<void(const Entry&)>& body);

// The single-threaded walk of one tree, charging through `seen`.
WalkResult walk(const QString& path, std::optional<qint32> device, Dedupe& seen,
                const Cancelled& cancelled);

// Measures a path of any kind: a folder is walked (in parallel or not), a regular file counts its
// allocated blocks, anything else (a symbolic link) counts nothing. A missing path is empty; one
// that may not be looked at is empty with one denied.
WalkResult size(const QString& path, bool parallel, const Cancelled& cancelled = {});

// The device of the path itself (a link is not followed); nothing when it cannot be read.
std::optional<qint32> device(const QString& path);
// A folder's own blocks (its list of entries), which emptying it never frees; 0 for anything else.
qint64 ownBlocks(const QString& folder);

// Bytes no other file shares and a clone identifier (where its first shared block lies, 0 when it
// shares none) of a file on a file system that can share blocks; nothing elsewhere or on failure.
std::optional<std::pair<qint64, quint64>> cloneInfo(const QString& path);

// Bytes of a file or folder that other files outside it hold too (blocks shared with reflinked
// copies or snapshots elsewhere): removing it does not free them. Blocks shared only between files
// inside it are not counted. 0 on file systems that cannot share blocks.
qint64 heldElsewhere(const QString& path, const Cancelled& cancelled = {});

// The size tree of a folder: `depth` levels listed exactly, each folder below summed as a whole.
// A file at an exact level gets its own node when it holds at least `minFile` bytes or is in
// `keepFiles`; smaller ones only add to their folder. `roots` receives the summed folders' paths
// before they are walked and `rootDone` each one's total as it finishes (on a walking thread).
// Folders that could not all be read carry the note "partly locked", up to the root.
struct TreeOptions {
    int depth = 4;
    qint64 minFile = 0;
    QSet<QString> keepFiles;
    WalkProgress* progress = nullptr;
    Cancelled cancelled;
    std::function<void(const QStringList&)> roots;
    std::function<void(int, const WalkResult&)> rootDone;
    // Receives the folders that hold files sharing blocks with other files: true for a folder
    // walked whole (they may lie anywhere inside it), false for one listed exactly (its own files).
    QHash<QString, bool>* sharing = nullptr;
};
SpaceNode tree(const QString& path, const TreeOptions& options);
// Whether the item at `path` inside a walked tree may hold files that share blocks, by what the walk
// recorded in TreeOptions::sharing.
bool mayHoldSharing(const QHash<QString, bool>& sharing, const QString& path);

// The immediate contents of one folder, each sized, largest first; folders have no children.
// `skip` leaves out entries by name.
QList<SpaceNode> children(const QString& path, const Cancelled& cancelled = {},
                          const std::function<bool(const QString&)>& skip = {});

inline const QString partlyLocked = QStringLiteral("partly locked");

}  // namespace Walker
