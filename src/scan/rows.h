#pragma once
// Small pieces shared by the code that makes rows.

#include <QDateTime>
#include <QList>
#include <optional>

#include "core/records.h"

namespace Rows {

// Largest first; equal sizes keep their order.
void sortParts(QList<Part>& parts);
// The row of an extra check from its parts: bytes and paths summed, parts largest first, the place
// `prefix` followed by the count of items; nothing when no item was found.
std::optional<Finding> finish(Finding row, const QString& prefix, const QString& word);
// `verb` and how long ago, "downloaded 3 days ago"; empty without a date.
QString agoNote(const QString& verb, const std::optional<QDateTime>& date, const QDateTime& now);

// `note` with the bytes of the item that other files hold too and removing it leaves.
QString withHeldElsewhere(const QString& note, qint64 bytes);

}  // namespace Rows
