// quarle trash [--title T] PATH…

#include "cli/option_checks.h"
#include "cli/history_lookup.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "core/fmt.h"
#include "core/home.h"
#include "core/paths.h"
#include "demo/demo.h"
#include "model/sentences.h"
#include "removal/remover.h"

namespace {

struct TrashOptions {
    QString title;
    QStringList paths;
};

std::optional<TrashOptions> parse(const QStringList& args) {
    const QString usage = QStringLiteral("trash [--title T] PATH…");
    const auto p = Options::parse(QStringLiteral("trash"), args, {{}, {QStringLiteral("--title")}}, usage);
    if (!p) return std::nullopt;
    if (p->operands.isEmpty()) {
        Out::error(QStringLiteral("trash needs at least one path: quarle ") + usage);
        return std::nullopt;
    }
    return TrashOptions{p->value("--title").value_or(QString()), p->operands};
}

}  // namespace

int runTrash(const QStringList& args) {
    std::optional<TrashOptions> options = parse(args);
    if (!options) return 2;
    if (Demo::isOn()) {
        Out::line(Sentences::demoRemoved);
        return 0;
    }
    QStringList paths;
    for (const QString& given : options->paths) paths.append(HistoryLookup::absolute(given));
    QString title = options->title;
    if (title.isEmpty())
        title = paths.size() == 1 ? Paths::lastComponent(paths.first()) : Fmt::count(paths.size(), QStringLiteral("item"));

    HistoryStore store;
    const Remover::Outcome outcome = Remover::trash(paths, title, false, store);
    for (const Remover::Refused& r : outcome.refused) Out::error(r.refusal.description());
    for (const QString& path : outcome.failed)
        Out::error(QStringLiteral("Couldn't move %1 to the Trash; it is still where it was.").arg(Fmt::path(path)));

    if (outcome.homeTrashUnusable)
        Out::error(QStringLiteral("The Trash folder %1 is not safe to use: it is a link, belongs to someone else or "
                                  "others may change it. Nothing goes to another Trash instead; put it right and try "
                                  "again.")
                       .arg(Fmt::path(Home::trashFolder())));
    for (const QString& path : outcome.vanished)
        Out::error(QStringLiteral("%1 was moved away by something else meanwhile; Quarle did nothing to it.")
                       .arg(Fmt::path(path)));
    for (const QString& path : outcome.holdingMounts)
        Out::error(QStringLiteral("%1 holds a mounted drive or folder, which emptying the Trash would erase; it was "
                                  "not moved. Unmount it first.")
                       .arg(Fmt::path(path)));
    if (!outcome.saved) Out::error(Sentences::historyNotSaved);

    const HistoryEntry& entry = outcome.entry;
    if (entry.moved.isEmpty()) {
        Out::line(QStringLiteral("Nothing was moved to the Trash."));
    } else {
        QString text = QStringLiteral("Moved %1 (%2) to the Trash. History can restore it %3.")
                           .arg(Fmt::count(entry.moved.size(), QStringLiteral("item")), Fmt::bytes(entry.bytes),
                                HistoryLookup::keepFor(HistoryLookup::keepDays()));
        if (!outcome.refused.isEmpty()) text += QStringLiteral(" Left %1 alone.").arg(outcome.refused.size());
        if (!outcome.failed.isEmpty()) text += QStringLiteral(" %1 couldn't move.").arg(outcome.failed.size());
        Out::line(text);
        Out::line(QStringLiteral("History entry: ") + entry.id.toString(QUuid::WithoutBraces).toUpper());
    }
    return outcome.refused.isEmpty() && outcome.failed.isEmpty() && outcome.holdingMounts.isEmpty() &&
                   outcome.vanished.isEmpty() && outcome.saved
               ? 0
               : 1;
}

bool trashOptionsParse(const QStringList& args) { return parse(args).has_value(); }
