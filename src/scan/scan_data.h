#pragma once
// What one scan measured (ScanData) and what the pages read, derived from it (ScanResult).

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>

#include "core/records.h"
#include "core/space_node.h"
#include "scan/linux_system.h"

// An item cleared since the scan, kept so that a restore can put it back without a rescan.
struct Parked {
    Finding finding;  // the row it was cleared from, as it was
    Part part;
    SpaceNode node;  // its subtree as the scan saw it; empty when the tree did not hold it
    std::optional<QString> trashed;  // where it went in the Trash; none when it was not trashed

    bool operator==(const Parked&) const = default;
};

struct ScanData {
    SpaceNode home;  // the home folder's size tree, root named "Home"
    QMap<QString, qint64> outside;  // folders outside the home by absolute path, and "temp"
    QList<Finding> extras;  // the scan's own checks, not catalogue rules
    QStringList snapshots;
    qint64 swap = 0;
    std::optional<qint64> dataVolumeUsed;
    std::optional<qint64> vmVolumeUsed;
    qint64 trashFolderBlocks = 0;  // the Trash's files/ folder itself, which emptying leaves
    qint64 quarleTrash = 0;  // Quarle's own items still in the Trash
    std::optional<bool> fullDiskAccess;
    qint64 files = 0;
    double seconds = 0;
    QDateTime date;
    QMap<QString, Parked> parked;  // by the cleared path
    // Bytes of offered items that other files hold too (shared blocks), which removing them leaves;
    // by the item's path, only where there are such bytes.
    QMap<QString, qint64> heldElsewhere;
    // The cache folder's size tree when $XDG_CACHE_HOME lies outside the home; empty otherwise.
    SpaceNode cache;
    // Present exactly when the home is Linux-shaped.
    std::optional<LinuxSystem> linuxSystem;

    // The node of `path` in the home tree or the outside cache tree; null when neither holds it.
    const SpaceNode* node(const QString& path) const;

    // `part` of `finding` was cleared; `trashed` is where it went when it was moved to the Trash.
    // The tree and the extras lose it, the Trash gains it, and it is parked under its path.
    void removed(const Finding& finding, const Part& part, const std::optional<QString>& trashed = {});
    // The parked item at `path` came back: it returns to the tree and its row, and leaves the
    // Trash. False when nothing was parked there.
    bool restored(const QString& path);
    // `bytes` of Quarle's items were emptied from the Trash.
    void emptied(qint64 bytes);

    bool operator==(const ScanData&) const = default;
};

struct ScanResult {
    Volume volume;
    SpaceNode home;
    QList<Finding> findings;  // by bucket (now, call, keep), then largest first
    QList<DiskPart> strata;  // slices of the disk bar, largest first
    QList<SystemPart> system;  // what System Data holds, largest first
    qint64 systemTotal = 0;
    QStringList snapshots;
    std::optional<bool> fullDiskAccess;
    qint64 files = 0;
    double seconds = 0;
    QDateTime date;

    qint64 total(Bucket bucket) const;
    bool operator==(const ScanResult&) const = default;
};
