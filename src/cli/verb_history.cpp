// quarle history [--json]

#include "cli/history_lookup.h"
#include "cli/model_run.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "core/fmt.h"
#include "core/record_json.h"
#include "demo/demo.h"
#include "removal/remover.h"

int runHistory(const QStringList& args) {
    const std::optional<bool> wantsJson = Options::json(QStringLiteral("history"), args);
    if (!wantsJson) return 2;
    const bool json = *wantsJson;
    if (!Demo::isOn()) {
        HistoryStore store;
        Remover::syncWithTrash(store);  // what left the Trash some other way shows as such
    }
    Model model;  // after the sync: the model reads the history once
    ModelRun::loadHistory(model);
    const QList<HistoryEntry> entries = model.history();
    if (json) {
        Out::raw(encodeJsonList(entries).toText());
        return 0;
    }
    if (entries.isEmpty()) {
        Out::line(QStringLiteral("History is empty: Quarle hasn't removed anything yet."));
        return 0;
    }
    const int days = HistoryLookup::keepDays();
    for (const HistoryEntry& e : entries) {
        QString line = e.date.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")) + QStringLiteral("  ") +
                       e.title + QStringLiteral(" — ");
        if (!e.moved.isEmpty() || e.state == HistoryEntry::State::permanent)
            line += Fmt::bytes(e.bytes) + QStringLiteral(", ");
        if (!e.moved.isEmpty()) line += Fmt::count(e.moved.size(), QStringLiteral("item")) + QStringLiteral(", ");
        Out::line(line + HistoryLookup::stateText(e, days));
        Out::line(QStringLiteral("    ID ") + e.id.toString(QUuid::WithoutBraces).toUpper());
        for (const HistoryEntry::Moved& m : e.moved) Out::line(QStringLiteral("    ") + Fmt::path(m.original));
    }
    return 0;
}
