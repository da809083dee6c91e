// Putting back, emptying, expiry and keeping History in step with the Trash.

#include "removal/remover.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <functional>

#include "core/checked.h"
#include "core/home.h"
#include "core/paths.h"
#include "removal/trash.h"
#include "removal/trash_dirs.h"

namespace {

// Birth times closer than this are the same moment.
constexpr double bornTolerance = 0.001;

qint64 sumOf(const QList<HistoryEntry::Moved>& items) {
    qint64 total = 0;
    for (const HistoryEntry::Moved& m : items) total = Checked::add(total, m.bytes);
    return total;
}

// A drive attached again may get another device number: where both birth times are known, the
// file number and birth time name the object; the device decides only without them.
bool sameObject(const HistoryEntry::Moved& m, const Identity& now) {
    if (now.ino != *m.ino) return false;
    if (m.born && now.born) return std::abs(*m.born - *now.born) < bornTolerance;
    return now.dev == *m.dev;
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

namespace {

// Why an item of the entry did not come back, or nothing when it can be tried.
std::optional<Trash::Back> obstacle(const HistoryEntry::Moved& m) {
    if (Trash::isBeingErased(m.trashed)) return Trash::Back::beingEmptied;
    if (!exists(m.trashed)) return trashThere(m.trashed) ? Trash::Back::missing : Trash::Back::noTrash;
    if (!isOurs(m)) return Trash::Back::missing;  // another object took its name in the Trash
    if (exists(m.original)) return Trash::Back::occupied;
    return std::nullopt;
}

// True when the item stays recorded in the entry after a restore that did not bring it back.
bool staysAfter(Trash::Back why) { return why != Trash::Back::missing; }

// The History entry (other than `id`) that holds the item moved from `folder`, by its title.
QString holderOf(const QList<HistoryEntry>& entries, const QUuid& id, const QString& original) {
    for (const HistoryEntry& e : entries) {
        if (e.id == id || e.state != HistoryEntry::State::inTrash) continue;
        for (const HistoryEntry::Moved& m : e.moved)
            if (m.original != original && Paths::isWithin(original, m.original)) return e.title;
    }
    return {};
}

}  // namespace

Restored restore(const HistoryEntry& given, const std::optional<QSet<QString>>& only, HistoryStore& store) {
    Restored result;
    if (!store.current(given.id)) store.update(given);
    const QList<HistoryEntry> all = store.entries();
    Trash::Batch batch;
    // Applied to the current entry under the History lock: an emptying renames its items under the
    // same lock, so an item is either put back here or seen as being emptied, never both.
    result.saved = store.edit(given.id, [&](HistoryEntry& entry) {
        if (entry.state != HistoryEntry::State::inTrash) return;
        QList<HistoryEntry::Moved> kept;
        for (const HistoryEntry::Moved& m : std::as_const(entry.moved)) {
            if (only && !only->contains(m.original)) {
                kept.append(m);
                continue;
            }
            Trash::Back why = obstacle(m).value_or(Trash::Back::done);
            if (why == Trash::Back::done) why = batch.putBack(m.trashed, m.original);
            if (why == Trash::Back::done) {
                ++result.count;
                // Its folder was made again: the real one is still in the Trash with another entry.
                const QString holder = holderOf(all, entry.id, m.original);
                if (!holder.isEmpty() && !result.foldersIn.contains(holder)) result.foldersIn.append(holder);
                continue;
            }
            result.notBack.append(m.original);
            result.why.append({m.original, why});
            if (staysAfter(why)) kept.append(m);
        }
        entry.moved = kept;
        entry.bytes = sumOf(kept);
        if (kept.isEmpty()) entry.state = HistoryEntry::State::restored;
    });
    return result;
}

namespace {

// Erases the items of entry `id` that `chosen` picks, in two steps: under the History lock each
// item of ours gets the private name that marks it as being erased (from then on nobody can put
// it back), then it is erased outside the lock and the entry keeps only what stayed.
Emptied emptyItems(const QUuid& id, const std::function<bool(const HistoryEntry::Moved&)>& chosen,
                   HistoryStore& store) {
    Emptied out;
    Trash::Batch batch;
    QHash<QString, QString> claimed;  // private path -> original
    const QStringList mounts = TrashDirs::mountPoints();
    out.saved = store.edit(id, [&](HistoryEntry& entry) {
        if (entry.state != HistoryEntry::State::inTrash) return;
        QList<HistoryEntry::Moved> kept;
        for (HistoryEntry::Moved m : std::as_const(entry.moved)) {
            if (!chosen(m)) {
                kept.append(m);
                continue;
            }
            if (!exists(m.trashed) || !isOurs(m)) {
                if (!trashThere(m.trashed)) kept.append(m);  // waits on a drive that is away
                continue;
            }
            if (!batch.inTrash(m.trashed)) continue;  // a damaged record: nothing outside a Trash is erased
            if (TrashDirs::mountWithin(m.trashed, mounts)) {  // mounted into after it was trashed: left whole
                out.left.append(m.original);
                kept.append(m);
                continue;
            }
            if (const std::optional<QString> hidden = batch.claim(m.trashed)) {
                m.trashed = *hidden;
                claimed.insert(m.trashed, m.original);
            } else {
                out.left.append(m.original);
            }
            kept.append(m);
        }
        entry.moved = kept;
        entry.bytes = sumOf(kept);
        if (kept.isEmpty()) entry.state = HistoryEntry::State::emptied;
    });
    QSet<QString> erased;
    for (auto it = claimed.cbegin(); it != claimed.cend(); ++it) {
        if (batch.erase(it.key()))
            erased.insert(it.key());
        else
            out.left.append(it.value());  // what could not be deleted stays in the entry
    }
    if (erased.isEmpty()) return out;
    const bool savedAgain = store.edit(id, [&](HistoryEntry& entry) {
        QList<HistoryEntry::Moved> kept;
        for (const HistoryEntry::Moved& m : std::as_const(entry.moved)) {
            if (erased.contains(m.trashed))
                out.bytes = Checked::add(out.bytes, m.bytes);
            else
                kept.append(m);
        }
        entry.moved = kept;
        entry.bytes = sumOf(kept);
        if (kept.isEmpty() && entry.state == HistoryEntry::State::inTrash) entry.state = HistoryEntry::State::emptied;
    });
    out.saved = out.saved && savedAgain;
    return out;
}

}  // namespace

Emptied empty(const HistoryEntry& given, HistoryStore& store) {
    if (!store.current(given.id)) return {};
    return emptyItems(given.id, [](const HistoryEntry::Moved&) { return true; }, store);
}

Emptied expire(HistoryStore& store, int days, const QDateTime& now) {
    Emptied total;
    if (days < 1) return total;
    const qint64 keepSeconds = Checked::mul(days, 86400);
    for (const HistoryEntry& e : store.entries()) {
        if (e.state != HistoryEntry::State::inTrash || e.date.secsTo(now) <= keepSeconds) continue;
        total += empty(e, store);
    }
    return total;
}

Emptied& Emptied::operator+=(const Emptied& o) {
    bytes = Checked::add(bytes, o.bytes);
    left += o.left;
    saved = saved && o.saved;
    return *this;
}

qint64 syncWithTrash(HistoryStore& store) {
    recoverInterrupted(store);
    qint64 total = 0;
    // An emptying that was stopped half-way is finished: its items can never be put back whole.
    for (const HistoryEntry& e : store.entries())
        if (e.state == HistoryEntry::State::inTrash &&
            std::any_of(e.moved.cbegin(), e.moved.cend(), [](const auto& m) { return Trash::isBeingErased(m.trashed); })) {
            total = Checked::add(
                total, emptyItems(e.id, [](const HistoryEntry::Moved& m) { return Trash::isBeingErased(m.trashed); }, store)
                           .bytes);
        }
    for (const HistoryEntry& seen : store.entries()) {
        if (seen.state != HistoryEntry::State::inTrash || seen.moved.isEmpty()) continue;
        if (std::none_of(seen.moved.cbegin(), seen.moved.cend(), goneFromTrash)) continue;
        store.edit(seen.id, [&](HistoryEntry& e) {
            if (e.state != HistoryEntry::State::inTrash) return;
            QList<HistoryEntry::Moved> gone, rest;
            for (const HistoryEntry::Moved& m : std::as_const(e.moved)) (goneFromTrash(m) ? gone : rest).append(m);
            total = Checked::add(total, sumOf(gone));
            e.moved = rest;
            e.bytes = sumOf(rest);
            if (rest.isEmpty()) e.state = HistoryEntry::State::emptied;
        });
    }
    return total;
}

}  // namespace Remover
