#pragma once
// How the start-up disk's used space splits into the slices of the disk bar, and what the slice
// macOS calls System Data holds.

#include <QList>
#include <QStringList>

#include "core/records.h"
#include "scan/scan_data.h"

namespace SystemData {

struct Bar {
    QList<DiskPart> strata;  // slices of more than 0 bytes, largest first
    qint64 systemTotal = 0;  // the "System Data" slice: used space no other slice explains
};

Bar diskBar(const ScanData& data, const Volume& volume);
// The rows of System Data of more than 0 bytes, largest first. `findings` are the derived rows.
QList<SystemPart> breakdown(const ScanData& data, const Volume& volume, const QList<Finding>& findings,
                            qint64 systemTotal);

// Bytes in the stand-in for ~/.Trash as the scan measured them.
qint64 trashMeasured(const ScanData& data);
// The home folders that make up the home's share of the "Developer" slice, none inside another.
QStringList developerFolders();

// The pieces the macOS and the Linux breakdowns share.

qint64 atLeastZero(qint64 n);
// Bytes of the node at absolute `path` in `home`; 0 when the tree does not hold it.
qint64 bytesAt(const SpaceNode& home, const QString& path);

// Home folders handed out to slices and rows one after another, so that no byte is counted twice:
// a folder inside one taken before counts nothing, one holding folders taken before counts
// without them.
class Claims {
public:
    explicit Claims(const SpaceNode& home);
    // Takes the absolute `folders`; the bytes they add.
    qint64 take(const QStringList& folders);
    // Everything taken so far.
    qint64 total() const { return total_; }

private:
    const SpaceNode& home_;
    QStringList taken_;
    qint64 total_ = 0;
};

// The home's share of each slice but System Data and Trash, in the bar's order.
struct HomeSlices {
    qint64 developer = 0, photos = 0, apps = 0, documents = 0, downloads = 0, media = 0, mail = 0;
    qint64 sum() const;
};
// Takes the slices' folders from `claims`, Developer first.
HomeSlices homeSlices(const ScanData& data, Claims& claims);
// The bytes the Trash row and slice show.
qint64 trashRowBytes(const ScanData& data);

// The System Data rows of a Linux-shaped home: the root file system's own folders instead of
// macOS's volumes.
QList<SystemPart> linuxBreakdown(const ScanData& data, const QList<Finding>& findings, qint64 systemTotal);

}  // namespace SystemData
