// Putting back, emptying, expiry and keeping History in step with the Trash.

#include "removal/remover.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cmath>

#include "core/checked.h"
#include "core/home.h"
#include "core/paths.h"
#include "removal/trash.h"

namespace {

// Birth times closer than this are the same moment.
constexpr double bornTolerance = 0.001;

qint64 sumOf(const QList<HistoryEntry::Moved>& items) {
    qint64 total = 0;
    for (const HistoryEntry::Moved& m : items) total = Checked::add(total, m.bytes);
    return total;
}

bool sameObject(const HistoryEntry::Moved& m, const Identity& now) {
    if (now.dev != *m.dev || now.ino != *m.ino) return false;
    return !m.born || !now.born || std::abs(*m.born - *now.born) < bornTolerance;
}

// True when the Trash folder that holds a trashed item is there to look in: an item in the Trash of
// a drive that is unmounted now is still in that Trash. The home Trash is always there: a missing
// one was removed, with everything in it.
bool trashThere(const QString& trashed) {
    if (Paths::isWithin(trashed, Home::trashFolder())) return true;
    struct stat st;
    return ::stat(Paths::toBytes(Paths::parentOf(trashed)).constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

}  // namespace

namespace Remover {

std::optional<Identity> identity(const QString& path) { return identityAt(AT_FDCWD, Paths::toBytes(path)); }

bool exists(const QString& path) {
    struct stat st;
    return ::lstat(Paths::toBytes(path).constData(), &st) == 0;
}

bool isOurs(const HistoryEntry::Moved& m) {
    const std::optional<Identity> now = identity(m.trashed);
    if (!now) return false;
    if (!m.dev || !m.ino) return true;
    return sameObject(m, *now);
}

bool goneFromTrash(const HistoryEntry::Moved& m) {
    struct stat st;
    if (::lstat(Paths::toBytes(m.trashed).constData(), &st) != 0)
        return (errno == ENOENT || errno == ENOTDIR) && trashThere(m.trashed);  // an unreadable Trash proves nothing
    const std::optional<Identity> now = identity(m.trashed);
    if (!now || !m.dev || !m.ino) return false;
    return !sameObject(m, *now);
}

Restored restore(const HistoryEntry& given, const std::optional<QSet<QString>>& only, HistoryStore& store) {
    HistoryEntry entry = store.current(given.id).value_or(given);
    Restored result;
    if (entry.state != HistoryEntry::State::inTrash) return result;
    Trash::Batch batch;
    QList<HistoryEntry::Moved> kept;
    for (const HistoryEntry::Moved& m : std::as_const(entry.moved)) {
        if (only && !only->contains(m.original)) {
            kept.append(m);
            continue;
        }
        if (!exists(m.trashed)) {  // its copy left the Trash, or waits on a drive that is away
            result.notBack.append(m.original);
            if (!trashThere(m.trashed)) kept.append(m);
            continue;
        }
        if (!isOurs(m)) {  // another object took its name in the Trash
            result.notBack.append(m.original);
            continue;
        }
        if (exists(m.original)) {
            result.notBack.append(m.original);
            kept.append(m);
            continue;
        }
        switch (batch.putBack(m.trashed, m.original)) {
            case Trash::Back::done: ++result.count; break;
            case Trash::Back::missing: result.notBack.append(m.original); break;
            case Trash::Back::occupied:
            case Trash::Back::failed:
                result.notBack.append(m.original);
                kept.append(m);
                break;
        }
    }
    entry.moved = kept;
    entry.bytes = sumOf(kept);
    if (kept.isEmpty()) entry.state = HistoryEntry::State::restored;
    store.update(entry);
    return result;
}

qint64 empty(const HistoryEntry& given, HistoryStore& store) {
    HistoryEntry entry = store.current(given.id).value_or(given);
    if (entry.state != HistoryEntry::State::inTrash) return 0;
    // Erasing acts only inside a Trash Quarle recognises, whatever the history file says.
    Trash::Batch batch;
    QList<HistoryEntry::Moved> away;
    for (const HistoryEntry::Moved& m : std::as_const(entry.moved)) {
        if (exists(m.trashed)) {
            if (isOurs(m)) batch.erase(m.trashed);
        } else if (!trashThere(m.trashed)) {
            away.append(m);
        }
    }
    const qint64 emptied = entry.bytes - sumOf(away);
    if (away.isEmpty()) {
        entry.state = HistoryEntry::State::emptied;
    } else {
        entry.moved = away;
        entry.bytes = sumOf(away);
    }
    store.update(entry);
    return std::max<qint64>(emptied, 0);
}

qint64 expire(HistoryStore& store, int days, const QDateTime& now) {
    if (days < 1) return 0;
    const qint64 keepSeconds = Checked::mul(days, 86400);
    qint64 total = 0;
    for (const HistoryEntry& e : store.entries()) {
        if (e.state != HistoryEntry::State::inTrash || e.date.secsTo(now) <= keepSeconds) continue;
        total = Checked::add(total, empty(e, store));
    }
    return total;
}

qint64 syncWithTrash(HistoryStore& store) {
    recoverInterrupted(store);
    qint64 total = 0;
    for (HistoryEntry e : store.entries()) {
        if (e.state != HistoryEntry::State::inTrash || e.moved.isEmpty()) continue;
        QList<HistoryEntry::Moved> gone, rest;
        for (const HistoryEntry::Moved& m : std::as_const(e.moved)) (goneFromTrash(m) ? gone : rest).append(m);
        if (gone.isEmpty()) continue;
        total = Checked::add(total, sumOf(gone));
        if (rest.isEmpty()) {
            e.state = HistoryEntry::State::emptied;
        } else {
            e.moved = rest;
            e.bytes = sumOf(rest);
        }
        store.update(e);
    }
    return total;
}

}  // namespace Remover
