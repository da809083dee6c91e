#pragma once
// Every change Quarle makes to the user's files: moving chosen paths to the Trash and recording
// them in one History entry, command removals, putting items back, emptying Quarle's own items
// from the Trash, and noticing what left the Trash some other way. All state lives in the
// HistoryStore and on disk.

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>

#include "core/history_entry.h"
#include "removal/history_store.h"
#include "removal/identity.h"
#include "removal/refusal.h"
#include "removal/trash.h"

namespace Remover {

struct Refused {
    QString path;  // as given
    Refusal refusal;

    bool operator==(const Refused&) const = default;
};

// The result of one `trash` call.
struct Outcome {
    HistoryEntry entry;  // one Moved per item that reached the Trash
    QList<Refused> refused;
    QStringList failed;  // resolved paths that passed the checks but could not be moved
    QStringList holdingMounts;  // folders not moved because a drive or folder is mounted inside
    QStringList vanished;       // moved away by something else between the check and the move
    bool homeTrashUnusable = false;  // the home Trash is a link, someone else's or open to others
    bool saved = true;  // false when History could not be written: the info files still name the entry

    bool operator==(const Outcome&) const = default;
};

// Why one item was not put back.
struct NotBack {
    QString original;
    Trash::Back why;

    bool operator==(const NotBack&) const = default;
};

struct Restored {
    int count = 0;
    QStringList notBack;  // original paths that could not go back
    QList<NotBack> why;   // the same, each with its reason
    QStringList foldersIn;  // titles of the entries that hold folders made again for the items put back
    bool saved = true;

    bool operator==(const Restored&) const = default;
};

struct Emptied {
    qint64 bytes = 0;
    QStringList left;  // original paths of items (or parts of them) that could not be deleted
    bool saved = true;

    Emptied& operator+=(const Emptied& other);
    bool operator==(const Emptied&) const = default;
};

// Checks each path, moves it to the Trash and records it in one entry, saved at the first item,
// every 100 items, at least every half second and at the end, so that an interruption leaves a
// history that covers almost all that moved. With `freeNow` the items are then deleted for good.
// `known` holds sizes already measured, by path; `apps` the bundles being uninstalled.
Outcome trash(const QStringList& paths, const QString& title, bool freeNow, HistoryStore& store,
              const QSet<QString>& apps = {}, const QHash<QString, qint64>& known = {});

// Runs a command removal (300 seconds at most), or with the one word "empty-trash" empties the
// home Trash. On success one entry that cannot be restored is recorded. Nothing when it went
// well, else why not, in plain words.
std::optional<QString> command(const QStringList& args, const QString& title, qint64 bytes, HistoryStore& store);

// Puts the entry's items (or only those whose original path is in `only`) back where they were.
Restored restore(const HistoryEntry& entry, const std::optional<QSet<QString>>& only, HistoryStore& store);

// Deletes the entry's items from the Trash now and returns their bytes. Items in the Trash of a
// drive that is not there now (unmounted), and what could not be deleted, stay in the entry.
Emptied empty(const HistoryEntry& entry, HistoryStore& store);

// Empties the entries that have been in the Trash more than `days` days before `now`. Below 1 day
// nothing expires.
Emptied expire(HistoryStore& store, int days, const QDateTime& now);

// Takes into History the items Quarle moved just before an interruption, then marks what left the
// Trash some other way (emptied or put back by another tool). Returns the bytes found gone.
qint64 syncWithTrash(HistoryStore& store);

// Finds the items Quarle moved whose History record was never saved (the process was stopped
// between two saves) by the entry their info files name, and records them there (or in a new
// entry). Info files of Quarle's whose move never happened are removed. Returns the items taken in.
int recoverInterrupted(HistoryStore& store);

// True when the trashed item is still the object that was moved.
bool isOurs(const HistoryEntry::Moved& moved);
// True when the trashed item is no longer in the Trash (or another object took its name). An item
// whose Trash folder is not there (its drive is unmounted) is not known to be gone.
bool goneFromTrash(const HistoryEntry::Moved& moved);
std::optional<Identity> identity(const QString& path);
bool exists(const QString& path);

}  // namespace Remover
