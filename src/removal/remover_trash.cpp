// Moving to the Trash, freeing at once, and command removals.

#include <sys/stat.h>

#include <QElapsedTimer>
#include <cerrno>
#include <QUuid>

#include "core/checked.h"
#include "core/home.h"
#include "core/paths.h"
#include "measure/walker.h"
#include "platform/shell.h"
#include "removal/remover.h"
#include "removal/safety.h"
#include "removal/trash.h"
#include "removal/trash_dirs.h"

namespace {

constexpr int checkpointEvery = 100;
constexpr qint64 checkpointMillis = 500;
constexpr double commandTimeout = 300.0;

// History dates are whole seconds.
QDateTime now() { return QDateTime::fromSecsSinceEpoch(QDateTime::currentSecsSinceEpoch(), Qt::UTC); }

HistoryEntry newEntry(const QString& title, qint64 bytes, HistoryEntry::State state) {
    HistoryEntry e;
    e.id = QUuid::createUuid();
    e.date = now();
    e.title = title;
    e.bytes = bytes;
    e.state = state;
    return e;
}

qint64 sizeOf(const QString& given, const QString& resolved, const QHash<QString, qint64>& known) {
    if (const auto it = known.constFind(given); it != known.cend()) return *it;
    if (const auto it = known.constFind(resolved); it != known.cend()) return *it;
    return Walker::size(resolved, true).bytes;
}

}  // namespace

namespace Remover {

Outcome trash(const QStringList& paths, const QString& title, bool freeNow, HistoryStore& store,
              const QSet<QString>& apps, const QHash<QString, qint64>& known) {
    Outcome out;
    HistoryEntry& entry = out.entry;
    entry = newEntry(title, 0, HistoryEntry::State::inTrash);
    const QString home = Home::path();
    QElapsedTimer sinceCheckpoint;
    sinceCheckpoint.start();
    qsizetype saved = -1;  // items in the stored copy; -1 before the entry is stored
    Trash::Batch batch;
    const Safety::Checker safety(home);

    const QStringList mounts = TrashDirs::mountPoints();

    const auto checkpoint = [&] {
        if (!(saved < 0 ? store.add(entry) : store.update(entry))) out.saved = false;
        saved = entry.moved.size();
        sinceCheckpoint.restart();
    };
    for (const QString& path : paths) {
        const Safety::Verdict verdict = safety.check(path, apps);
        if (!verdict.ok()) {
            out.refused.append({path, *verdict.refusal});
            continue;
        }
        // A folder moved to the Trash with a drive mounted inside would have it emptied later.
        if (TrashDirs::mountWithin(verdict.path, mounts)) {
            out.holdingMounts.append(verdict.path);
            continue;
        }
        const qint64 bytes = sizeOf(path, verdict.path, known);
        const std::optional<Trash::Put> put = batch.put(verdict.path, entry.date, entry.id);
        if (!put) {
            struct stat st;
            if (::lstat(Paths::toBytes(verdict.path).constData(), &st) != 0 && errno == ENOENT) {
                out.vanished.append(verdict.path);
                continue;
            }
            out.failed.append(verdict.path);
            if (!TrashDirs::home(true)) out.homeTrashUnusable = true;
            continue;
        }
        entry.moved.append(movedItem(Paths::standardize(path, home), put->trashed, bytes, put->identity));
        entry.bytes = Checked::add(entry.bytes, bytes);
        const qsizetype count = entry.moved.size();
        if (count == 1 || count % checkpointEvery == 0 || sinceCheckpoint.elapsed() > checkpointMillis) checkpoint();
    }
    if (saved >= 0 ? saved != entry.moved.size() : !entry.moved.isEmpty()) checkpoint();

    if (freeNow && !entry.moved.isEmpty()) {
        const Emptied emptied = empty(entry, store);
        if (!emptied.saved) out.saved = false;
        if (emptied.left.isEmpty()) {
            entry.state = HistoryEntry::State::permanent;
            if (!store.edit(entry.id, [](HistoryEntry& e) { e.state = HistoryEntry::State::permanent; }))
                out.saved = false;
        } else {
            out.failed += emptied.left;  // still in the Trash, listed in History
        }
    }
    return out;
}

std::optional<QString> command(const QStringList& args, const QString& title, qint64 bytes, HistoryStore& store) {
    if (args == QStringList{QStringLiteral("empty-trash")}) {
        if (!Trash::emptyHome()) return QStringLiteral("The Trash folder could not be opened.");
        syncWithTrash(store);
    } else if (!Shell::run(args, commandTimeout)) {
        return QStringLiteral("%1 did not finish.").arg(args.value(0));
    }
    if (!store.add(newEntry(title, bytes, HistoryEntry::State::permanent)))
        return QStringLiteral("It was done, but History could not be saved.");
    return std::nullopt;
}

}  // namespace Remover
