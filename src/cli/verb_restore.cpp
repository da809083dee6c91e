// quarle restore ID [PATH…]: History's "Put Back" on the model.

#include "cli/history_lookup.h"
#include "cli/model_run.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "core/fmt.h"

int runRestore(const QStringList& given) {
    const auto p = Options::parse(QStringLiteral("restore"), given, {}, QStringLiteral("restore ID [PATH…]"));
    if (!p) return 2;
    const QStringList& args = p->operands;
    if (args.isEmpty()) {
        Out::error(QStringLiteral("restore needs the ID of a History entry: quarle restore ID [PATH…]"));
        return 2;
    }
    Model model;
    ModelRun::loadHistory(model);
    const std::optional<HistoryEntry> entry =
        HistoryLookup::findInTrash(model.history(), args.first(), QStringLiteral("put back"));
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
    ModelRun::Reports reports(model);
    model.restore(*entry, only);
    return ModelRun::printReport(reports.wait());
}
