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

enum class Back { done, occupied, missing, failed };

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

    // Deletes `trashed` and then its info file; only inside a Trash that Quarle recognises.
    bool erase(const QString& trashed);

private:
    const TrashCan* opened(const QString& key, const std::function<std::optional<TrashCan>()>& open);
    const TrashCan* holding(const QString& trashed);
    const TrashCan* topFor(const QString& resolved, dev_t device);
    UniqueFd folder(const QString& path, bool create);

    QString home_;      // as given, possibly reached through a link
    QString realHome_;  // resolved
    UniqueFd homeFd_;
    std::map<QString, std::optional<TrashCan>> cans_;  // by files/ folder or top folder; none: unusable
};

// Single items, each its own batch.
std::optional<Put> put(const QString& resolved, const QDateTime& date, const QUuid& entry);
Back putBack(const QString& trashed, const QString& original);
bool erase(const QString& trashed);

// Deletes everything in the home Trash: every item, every info file. False when it cannot be opened.
bool emptyHome();

}  // namespace Trash
