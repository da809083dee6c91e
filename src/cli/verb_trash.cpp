// quarle trash [--title T] PATH…

#include "cli/option_checks.h"
#include "cli/history_lookup.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "core/fmt.h"
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
    TrashOptions o;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (a == QLatin1String("--title")) {
            if (i + 1 >= args.size()) {
                Out::error(QStringLiteral("--title needs a title: quarle trash --title \"Old caches\" PATH…"));
                return std::nullopt;
            }
            o.title = args[++i];
        } else if (a == QLatin1String("--")) {
            o.paths.append(args.mid(i + 1));
            break;
        } else if (a.startsWith(QLatin1String("--"))) {
            Out::error(QStringLiteral("trash has no option \"%1\".").arg(a));
            return std::nullopt;
        } else {
            o.paths.append(a);
        }
    }
    if (o.paths.isEmpty()) {
        Out::error(QStringLiteral("trash needs at least one path: quarle trash [--title T] PATH…"));
        return std::nullopt;
    }
    return o;
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
    return outcome.refused.isEmpty() && outcome.failed.isEmpty() ? 0 : 1;
}

bool trashOptionsParse(const QStringList& args) { return parse(args).has_value(); }
