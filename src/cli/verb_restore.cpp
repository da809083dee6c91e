// quarle restore ID [PATH…]

#include "cli/history_lookup.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "core/fmt.h"
#include "removal/remover.h"

int runRestore(const QStringList& args) {
    if (args.isEmpty()) {
        Out::error(QStringLiteral("restore needs the ID of a History entry: quarle restore ID [PATH…]"));
        return 2;
    }
    HistoryStore store;
    const std::optional<HistoryEntry> entry =
        HistoryLookup::findInTrash(store.entries(), args.first(), QStringLiteral("put back"));
    if (!entry) return 1;
    std::optional<QSet<QString>> only;
    if (args.size() > 1) {
        QSet<QString> originals;
        for (const HistoryEntry::Moved& m : entry->moved) originals.insert(m.original);
        only.emplace();
        for (const QString& given : args.mid(1)) {
            const QString path = HistoryLookup::absolute(given);
            if (!originals.contains(path)) {
                Out::error(QStringLiteral("%1 is not one of the items of \"%2\"; nothing was put back.")
                               .arg(Fmt::path(path), entry->title));
                return 1;
            }
            only->insert(path);
        }
    }
    const Remover::Restored result = Remover::restore(*entry, only, store);
    if (result.notBack.isEmpty()) {
        Out::line(QStringLiteral("Put back %1 where they were.").arg(Fmt::count(result.count, QStringLiteral("item"))));
        return 0;
    }
    Out::line(QStringLiteral("Put back %1. %2 couldn't go back: something is in their place.")
                  .arg(result.count)
                  .arg(result.notBack.size()));
    for (const QString& path : result.notBack) Out::line(QStringLiteral("    ") + Fmt::path(path));
    return 1;
}
