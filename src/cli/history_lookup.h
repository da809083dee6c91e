#pragma once
// What the History verbs share: finding an entry by its ID, how long items are kept, and how an
// entry's state reads.

#include <QList>
#include <QString>
#include <optional>

#include "core/history_entry.h"

namespace HistoryLookup {

// The entry whose ID is `text`, or the only one whose ID starts with it (4 characters at least).
// Says why on standard error when there is none.
std::optional<HistoryEntry> find(const QList<HistoryEntry>& entries, const QString& text);

// The same, for an entry whose items are still in the Trash; otherwise says there is nothing to
// `doing` ("put back", "empty") and why.
std::optional<HistoryEntry> findInTrash(const QList<HistoryEntry>& entries, const QString& text, const QString& doing);

// The "keepDays" preference: days Quarle's items stay in the Trash (7 unless set).
int keepDays();
// "for 7 days", or "until you empty it" when items are kept for good.
QString keepFor(int days);

// The entry's state in a few words ("in the Trash until Sat 8 Mar", "put back", …).
QString stateText(const HistoryEntry& entry, int days);

// The absolute, standardised form of a path typed on the command line.
QString absolute(const QString& given);

}  // namespace HistoryLookup
