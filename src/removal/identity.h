#pragma once
// What makes a trashed item the same object later: its device, file number and birth time. A file
// that later took the same name in the Trash differs in at least one of them.

#include <QByteArray>
#include <QtGlobal>
#include <optional>

#include "core/history_entry.h"

struct Identity {
    qint32 dev = 0;
    quint64 ino = 0;
    std::optional<double> born;  // seconds since 1970, when the file system records it

    bool operator==(const Identity&) const = default;
};

// The identity of `name` inside the folder `dirFd` (AT_FDCWD for a path), the name itself never
// followed; nothing when it cannot be looked at.
std::optional<Identity> identityAt(int dirFd, const QByteArray& name);

// The History record of an item moved from `original` to `trashed`, with its identity when known.
HistoryEntry::Moved movedItem(const QString& original, const QString& trashed, qint64 bytes,
                              const std::optional<Identity>& identity);
