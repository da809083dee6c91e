#pragma once
// How the start-up disk's used space splits into the slices of the disk bar, and what the slice
// macOS calls System Data holds.

#include <QList>

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

}  // namespace SystemData
