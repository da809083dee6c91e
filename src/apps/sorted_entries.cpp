#include "apps/sorted_entries.h"

#include <algorithm>

#include "measure/walker.h"

QList<Walker::Entry> sortedEntries(const QString& folder) {
    QList<Walker::Entry> entries;
    Walker::list(folder, std::nullopt, [&](const Walker::Entry& e) { entries.append(e); });
    std::sort(entries.begin(), entries.end(),
              [](const Walker::Entry& a, const Walker::Entry& b) { return a.name < b.name; });
    return entries;
}
