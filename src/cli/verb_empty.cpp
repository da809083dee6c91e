// quarle empty ID|--all [--yes], quarle expire [--days N]

#include <QDateTime>

#include "cli/history_lookup.h"
#include "cli/model_run.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "core/prefs.h"
#include "core/fmt.h"
#include "demo/demo.h"
#include "model/sentences.h"
#include "removal/remover.h"

int runEmpty(const QStringList& args) {
    const QString usage = QStringLiteral("empty ID|--all [--yes]");
    const auto p = Options::parse(QStringLiteral("empty"), args, {{QStringLiteral("--yes"), QStringLiteral("--all")}, {}}, usage);
    if (!p) return 2;
    const QStringList rest = p->operands;
    const bool yes = p->has("--yes");
    const bool all = p->has("--all");
    if (all ? !rest.isEmpty() : rest.size() != 1) {
        Out::error(QStringLiteral("empty needs the ID of one History entry, or --all: quarle ") + usage);
        return 2;
    }
    Model model;
    ModelRun::loadHistory(model);
    ModelRun::Reports reports(model);
    if (all) {
        model.emptyAll(false);
        if (!model.ask() && !reports.has()) {
            Out::line(QStringLiteral("Nothing of Quarle's is in the Trash."));
            return 0;
        }
    } else {
        const std::optional<HistoryEntry> entry =
            HistoryLookup::findInTrash(model.history(), rest.first(), QStringLiteral("empty"));
        if (!entry) return 1;
        model.emptyNow(*entry, false);
    }
    if (!ModelRun::answerAsk(model, yes)) {
        Out::line(QStringLiteral("Nothing was emptied."));
        return 1;
    }
    return ModelRun::printReport(reports.wait());
}

int runExpire(const QStringList& args) {
    int days = HistoryLookup::keepDays();
    const auto p = Options::parse(QStringLiteral("expire"), args, {{}, {QStringLiteral("--days")}}, QStringLiteral("expire [--days N]"));
    if (!p) return 2;
    if (const auto given = p->value("--days"); given || !p->operands.isEmpty()) {
        bool ok = false;
        if (given && p->operands.isEmpty()) days = int(std::min<qlonglong>(given->toLongLong(&ok), Prefs::maxKeepDays));
        if (!ok || days < 0) {
            Out::error(QStringLiteral("expire takes --days and a whole number, 0 or more: quarle expire [--days N]"));
            return 2;
        }
    }
    if (Demo::isOn()) {
        Out::line(Sentences::demoEmptied);
        return 0;
    }
    if (days < 1) {
        Out::line(QStringLiteral("Quarle keeps its items until you empty them, so nothing expired."));
        return 0;
    }
    HistoryStore store;
    const auto inTrash = [&] {
        qsizetype n = 0;
        for (const HistoryEntry& e : store.entries()) n += e.state == HistoryEntry::State::inTrash;
        return n;
    };
    const qsizetype before = inTrash();
    const Remover::Emptied done = Remover::expire(store, days, QDateTime::currentDateTimeUtc());
    const qint64 bytes = done.bytes;
    const qsizetype emptied = before - inTrash();
    Remover::syncWithTrash(store);
    if (emptied == 0) {
        Out::line(QStringLiteral("Nothing of Quarle's has been in the Trash longer than %1.")
                      .arg(Fmt::count(days, QStringLiteral("day"))));
    } else {
        Out::line(QStringLiteral("Emptied %1 (%2) that had been in the Trash longer than %3.")
                      .arg(Fmt::count(emptied, QStringLiteral("entry"), QStringLiteral("entries")), Fmt::bytes(bytes),
                           Fmt::count(days, QStringLiteral("day"))));
    }
    for (const QString& path : done.left)
        Out::error(QStringLiteral("Couldn't delete all of %1; what is left stays in the Trash.").arg(Fmt::path(path)));
    if (!done.saved) Out::error(Sentences::historyNotSaved);
    return done.left.isEmpty() && done.saved ? 0 : 1;
}
