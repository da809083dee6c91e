#pragma once
// What the removal tests share: reading files and folders byte for byte, a fingerprint of a whole
// tree, and the Trash as another tool sees it.

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include "core/history_entry.h"

namespace Fixture {

QByteArray contents(const QString& path);
// Names in a folder (raw bytes kept), sorted.
QStringList namesIn(const QString& folder);
// A fingerprint of every path, type, mode and content below `root`.
QByteArray treeHash(const QString& root);

// One item of a Trash folder: its info file's decoded original path and its trashed path.
struct TrashItem {
    QString original;
    QString trashed;
    bool operator==(const TrashItem&) const = default;
};
// The items of the Trash at `root` that have both an info file and their files/ entry.
QList<TrashItem> trashItems(const QString& root, const QString& base);

// Every original is exactly once at its place or in one of `trashRoots` (with its info file);
// with `recorded`, each trashed one also has a Moved record in `history`.
void expectEachOnce(const QStringList& originals, const QStringList& trashRoots,
                    const QList<HistoryEntry>& history, bool recorded = true);

// The seed of a test's random timings: QUARLE_TEST_SEED when set, else a fresh one. It is printed,
// so that a failing run can be replayed.
quint32 timingSeed();

}  // namespace Fixture
