#pragma once
// Quarle's own FreeDesktop.org Trash: moving an item in, putting it back, deleting it for good.
// An item only ever moves by rename within its own file system, never by copy and delete, and
// nothing already in a Trash or at an original place is ever overwritten.

#include <QDateTime>
#include <QString>
#include <QUuid>
#include <functional>
#include <map>
#include <optional>

#include "removal/dirs.h"
#include "removal/identity.h"
#include "removal/trash_dirs.h"

namespace Trash {

struct Put {
    QString trashed;  // the item's path inside the Trash
    std::optional<Identity> identity;  // taken right after the move

    bool operator==(const Put&) const = default;
};

// What came of putting one item back. Every value but `done` leaves the item where it was.
enum class Back {
    done,
    occupied,        // something is at the original place
    missing,         // the item is no longer in the Trash
    noTrash,         // its Trash folder is not there (a drive not connected) or not usable
    folderUnusable,  // the folder it goes back to cannot be made or written
    beingEmptied,    // it is being erased
    failed,
};

// The Trash work on the items of one removal, restore or emptying. Each Trash folder, and the home
// folder that items are opened below, is opened and checked once for the whole batch rather than
// once per item; every item still moves by descriptor, its folders opened without following links.
class Batch {
public:
    Batch();

    // Moves the item at `resolved` (a path whose folders are no links, as Safety::check returns
    // it) to the Trash of its file system: info file first (claiming the name), then the rename.
    // `date` goes into the info file, and `entry` names the History entry it belongs to. Nothing
    // when the item could not be moved; it is then where it was.
    std::optional<Put> put(const QString& resolved, const QDateTime& date, const QUuid& entry);

    // Moves `trashed` back to `original`, making its parent folders when they are gone, and
    // removes its info file. Something at `original` (even a dangling link) is never replaced.
    Back putBack(const QString& trashed, const QString& original);

    // Renames `trashed` to a private name in the same files/ folder (its info file likewise) that
    // marks it as being erased, and returns the new path; to be called under the History lock, so
    // that a restore either moved the item before or sees it is being emptied.
    std::optional<QString> claim(const QString& trashed);
    // True when `trashed` lies directly in a Trash that Quarle recognises.
    bool inTrash(const QString& trashed) { return holding(trashed) != nullptr; }

    // Deletes `trashed` and then its info file; only inside a Trash that Quarle recognises, and
    // never past a mount point inside it. False when something of it stayed.
    bool erase(const QString& trashed);

private:
    const TrashCan* opened(const QString& key, const std::function<std::optional<TrashCan>()>& open);
    const TrashCan* holding(const QString& trashed);
    const TrashCan* topFor(const QString& resolved, dev_t device);
    UniqueFd folder(const QString& path, bool create, mode_t mode);

    QString home_;      // as given, possibly reached through a link
    QString realHome_;  // resolved
    UniqueFd homeFd_;
    std::optional<dev_t> homeDevice_;
    std::map<QString, std::optional<TrashCan>> cans_;  // by files/ folder or top folder; none: unusable
};

// True when `trashed` carries the private name of an item being erased.
bool isBeingErased(const QString& trashed);

// Single items, each its own batch.
std::optional<Put> put(const QString& resolved, const QDateTime& date, const QUuid& entry);
Back putBack(const QString& trashed, const QString& original);
bool erase(const QString& trashed);

// Deletes everything in the home Trash: every item, every info file. False when it cannot be opened.
bool emptyHome();

}  // namespace Trash
