// quarle uninstall APP and quarle orphans --remove NAME: the Apps page's flows on the model. The
// leftovers the model ticks by default (the sure ones) go along; --all-leftovers takes every one.

#include <algorithm>

#include "cli/option_checks.h"
#include "cli/model_run.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "core/fmt.h"

namespace {

struct AppOptions {
    bool dryRun = false;
    bool yes = false;
    bool freeNow = false;
    bool allLeftovers = false;
    QString name;
};

std::optional<AppOptions> parse(const QString& verb, const QStringList& args) {
    const bool orphans = verb == QLatin1String("orphans");
    const QString usage = (orphans ? QStringLiteral("orphans --remove") : verb) +
                          QStringLiteral(" [--dry-run] [--yes] [--all-leftovers] [--free-now] NAME");
    QStringList flags{QStringLiteral("--dry-run"), QStringLiteral("--yes"), QStringLiteral("--free-now"),
                      QStringLiteral("--all-leftovers")};
    if (orphans) flags.append(QStringLiteral("--remove"));
    const auto p = Options::parse(verb, args, {flags, {}}, usage);
    if (!p) return std::nullopt;
    if (p->operands.size() != 1) {
        Out::error(QStringLiteral("%1 needs exactly one name: quarle %2").arg(verb, usage));
        return std::nullopt;
    }
    AppOptions o;
    o.dryRun = p->has("--dry-run");
    o.yes = p->has("--yes");
    o.freeNow = p->has("--free-now");
    o.allLeftovers = p->has("--all-leftovers");
    o.name = p->operands.first();
    return o;
}

void printLeftovers(const QString& heading, const QList<Leftover>& leftovers) {
    if (leftovers.isEmpty()) return;
    Out::line(heading);
    for (const Leftover& l : leftovers)
        Out::line(QStringLiteral("  %1  %2  %3 — %4")
                      .arg(Fmt::bytes(l.bytes).rightJustified(8), title(l.confidence).leftJustified(9), Fmt::path(l.path), l.why));
}

// Ticks every leftover of the focused row, or leaves the model's default ticks; prints both halves.
void tickLeftovers(Model& model, const QList<Leftover>& leftovers, bool all) {
    if (all)
        for (const Leftover& l : leftovers)
            if (!model.leftoverTicks().contains(l.path)) model.toggleLeftover(l.path);
    QList<Leftover> going, staying;
    for (const Leftover& l : leftovers) (model.leftoverTicks().contains(l.path) ? going : staying).append(l);
    printLeftovers(QStringLiteral("Left behind, removed with it:"), going);
    printLeftovers(QStringLiteral("Left in place (--all-leftovers takes them too):"), staying);
}

// Asks, performs the pending confirmation and prints its toast.
int confirmAndPerform(Model& model, const AppOptions& o) {
    if (!model.confirm()) {
        Out::error(model.toast().value_or(QStringLiteral("Nothing to remove.")));
        return 1;
    }
    const Confirm confirm = *model.confirm();
    Out::line(QStringLiteral("%1 — %2").arg(confirm.title, Fmt::bytes(confirm.bytes)));
    for (const Finding& c : confirm.commands())
        Out::line(QStringLiteral("  Runs %1: removed for good, History can't put it back.").arg(c.removal.args.join(QLatin1Char(' '))));
    if (o.dryRun) return 0;
    const QString question = o.freeNow ? QStringLiteral("Delete %1 for good?").arg(Fmt::bytes(confirm.bytes))
                                       : QStringLiteral("Move %1 to the Trash?").arg(Fmt::bytes(confirm.bytes));
    if (!ModelRun::agree(question, o.yes)) {
        Out::line(QStringLiteral("Nothing was removed."));
        return 1;
    }
    ModelRun::Reports reports(model);
    model.perform(confirm, o.freeNow);
    return ModelRun::printReport(reports.wait());
}

}  // namespace

int runUninstall(const QStringList& args) {
    const std::optional<AppOptions> o = parse(QStringLiteral("uninstall"), args);
    if (!o) return 2;
    Model model;
    ModelRun::loadApps(model);
    QList<InstalledApp> matches;
    for (const InstalledApp& app : model.apps())
        if (app.name.compare(o->name, Qt::CaseInsensitive) == 0 || app.bundleID == o->name || app.path == o->name)
            matches.append(app);
    if (matches.isEmpty()) {
        Out::error(QStringLiteral("no app is called \"%1\". \"quarle apps\" lists them.").arg(o->name));
        return 1;
    }
    if (matches.size() > 1) {
        QStringList paths;
        for (const InstalledApp& app : matches) paths.append(app.path);
        Out::error(QStringLiteral("%1 apps are called \"%2\"; name one by its path: %3.")
                       .arg(matches.size())
                       .arg(o->name, paths.join(QStringLiteral(", "))));
        return 1;
    }
    const InstalledApp app = matches.first();
    model.focusApp(app);
    Out::line(QStringLiteral("%1  %2  %3").arg(app.name, Fmt::bytes(app.appBytes), Fmt::path(app.path)));
    tickLeftovers(model, app.leftovers, o->allLeftovers);
    model.askUninstall(app);
    return confirmAndPerform(model, *o);
}

int runOrphanRemoval(const QStringList& args) {
    const std::optional<AppOptions> o = parse(QStringLiteral("orphans"), args);
    if (!o) return 2;
    Model model;
    ModelRun::loadApps(model);
    const QList<Orphan>& orphans = model.orphans();
    const auto it = std::find_if(orphans.begin(), orphans.end(), [&](const Orphan& x) {
        return x.name.compare(o->name, Qt::CaseInsensitive) == 0 || (!x.bundleID.isEmpty() && x.bundleID == o->name);
    });
    if (it == orphans.end()) {
        Out::error(QStringLiteral("no app that is gone left anything called \"%1\". \"quarle orphans\" lists them.").arg(o->name));
        return 1;
    }
    const Orphan orphan = *it;
    model.focusOrphan(orphan);
    tickLeftovers(model, orphan.leftovers, o->allLeftovers);
    model.askRemoveOrphan(orphan);
    return confirmAndPerform(model, *o);
}

bool appOptionsParse(const QString& verb, const QStringList& args) { return parse(verb, args).has_value(); }
