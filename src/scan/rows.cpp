#include "scan/rows.h"

#include <algorithm>

#include "core/checked.h"
#include "core/fmt.h"

namespace Rows {

void sortParts(QList<Part>& parts) {
    std::stable_sort(parts.begin(), parts.end(), [](const Part& a, const Part& b) { return a.bytes > b.bytes; });
}

std::optional<Finding> finish(Finding row, const QString& prefix, const QString& word) {
    if (row.parts.isEmpty()) return std::nullopt;
    sortParts(row.parts);
    row.bytes = 0;
    row.paths.clear();
    for (const Part& p : row.parts) {
        row.bytes = Checked::add(row.bytes, p.bytes);
        row.paths.append(p.path);
    }
    row.place = prefix + Fmt::count(row.parts.size(), word);
    return row;
}

QString agoNote(const QString& verb, const std::optional<QDateTime>& date, const QDateTime& now) {
    if (!date) return {};
    return verb + QLatin1Char(' ') + Fmt::ago(date, now);
}

QString withHeldElsewhere(const QString& note, qint64 bytes) {
    const QString held = QStringLiteral("shares %1 with files that stay").arg(Fmt::bytes(bytes));
    return note.isEmpty() ? held : note + QStringLiteral(" · ") + held;
}

}  // namespace Rows
