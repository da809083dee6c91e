#pragma once
// The text of the history file, kept entry by entry so that a save encodes only what changed:
// during a large removal one entry grows by a hundred items between saves, and encoding all of
// its items again at every save would cost time growing with the square of their number. The
// text is byte for byte what the shared JSON writer prints for the whole list.

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QUuid>

#include "core/history_entry.h"

class HistoryText {
public:
    QByteArray of(const QList<HistoryEntry>& list);

private:
    struct Cached {
        HistoryEntry entry;
        QByteArray movedText;  // the items of the "moved" list, as printed inside the entry
        QByteArray text;       // the whole entry, as printed inside the list
    };
    const QByteArray& entryText(const HistoryEntry& entry);

    QHash<QUuid, Cached> cache_;
};
