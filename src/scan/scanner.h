#pragma once
// One full measurement of the user's disk (scan) and the pure derivation of what the pages show
// (derive). Scanning only reads.

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>

#include "core/records.h"
#include "measure/progress.h"
#include "measure/walk_types.h"
#include "scan/early_rows.h"
#include "scan/scan_data.h"

namespace Scanner {

// Files smaller than this are summed into their folder in the home tree rather than given a node
// of their own: Storage has nothing to show for them, and a home of millions of small files keeps
// a tree of a few thousand nodes. Rows that list their items get their small files back (step 7).
constexpr qint64 smallestFile = 1'000'000;
// Levels of the home folder listed exactly; everything below is summed per folder.
constexpr int treeDepth = 4;

// The folders outside the home that are measured, in this order.
const QStringList& outsideFolders();
// The folder that stands in for ~/.Trash: the home Trash's files/ folder.
QString trashFiles();

ScanData scan(WalkProgress& progress, const Cancelled& cancelled, const EarlyReport& early = {});

// Sizes of the outside folders that exist, each walked in parallel.
QMap<QString, qint64> sizes(WalkProgress& progress, const Cancelled& cancelled);

// The figures of the running system (0 or absent where a probe fails).
qint64 swapUsed();
std::optional<qint64> volumeUsed(const QString& path);
std::optional<QString> userTempFolder();
// The start-up volume: the file system of the home folder.
Volume volume();
// The Linux part of a scan of `home`: its user folders, the volume's reserved space, and the
// system's own folders unless `fake` (another root) comes without QUARLE_SYSTEM_ROOT.
LinuxSystem linuxSystem(const QString& home, bool fake, WalkProgress& progress, const Cancelled& cancelled);

ScanResult derive(const ScanData& data, const Volume& volume);
// The paths of every item the rows of `data` offer (rules and extras; not the Trash).
QStringList offeredPaths(const ScanData& data);
// The row of the Trash; `measured` is what the stand-in for ~/.Trash holds.
Finding trash(qint64 measured, qint64 quarleTrash, std::optional<bool> fullDiskAccess);
// What a part of a rule's row is called: a folder's name, without Xcode's build-folder suffix.
QString prettyPart(const QString& ruleID, const QString& name);

}  // namespace Scanner
