// quarle clean [--developer] [--dry-run] [--json] [--yes] [--free-now] [ID…]: the Clean page's
// "Move to Trash…" on the model: the default ticks or the rows named, the confirmation, the
// removal and its toast.

#include <QDateTime>
#include <algorithm>

#include "cli/option_checks.h"
#include "cli/model_run.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "core/checked.h"
#include "core/fmt.h"
#include "core/json.h"
#include "core/record_json.h"
#include "model/sentences.h"

namespace {

struct CleanOptions {
    bool developer = false;
    bool dryRun = false;
    bool json = false;
    bool yes = false;
    bool freeNow = false;
    QStringList ids;
};

const QString usage = QStringLiteral("quarle clean [--developer] [--dry-run] [--json] [--yes] [--free-now] [ID…]");

std::optional<CleanOptions> parse(const QStringList& args) {
    const auto p = Options::parse(QStringLiteral("clean"), args,
                                  {{QStringLiteral("--developer"), QStringLiteral("--dry-run"), QStringLiteral("--json"),
                                    QStringLiteral("--yes"), QStringLiteral("--free-now")},
                                   {}},
                                  usage.mid(QStringLiteral("quarle ").size()));
    if (!p) return std::nullopt;
    CleanOptions o;
    o.developer = p->has("--developer");
    o.dryRun = p->has("--dry-run");
    o.json = p->has("--json");
    o.yes = p->has("--yes");
    o.freeNow = p->has("--free-now");
    o.ids = p->operands;
    if (o.json && !o.yes && !o.dryRun) {
        Out::error(QStringLiteral("--json cannot answer a question: add --yes to clear, or --dry-run to only look."));
        return std::nullopt;
    }
    return o;
}

// A part kept out of the clear although its row is ticked, and why.
struct Kept {
    Finding finding;
    QList<Part> byDefault;  // the rule keeps them unless ticked by hand
    QList<Part> never;      // excluded for good in Settings
};

QList<Kept> keptParts(const Model& model, bool developer) {
    QList<Kept> out;
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (const Finding& f : model.scan()->findings) {
        if (!model.ticked().contains(f.id) || !f.removal.isTrash() || (developer && !f.developer)) continue;
        const QList<Part> offered = model.inside(f);
        const QSet<QString> byDefault = Picks::keptByDefault(f.id, offered, now);
        Kept k{f, {}, {}};
        for (const Part& p : offered) {
            if (model.isChosen(f, p)) continue;
            if (model.picks().never.contains(p.path))
                k.never.append(p);
            else if (byDefault.contains(p.path))
                k.byDefault.append(p);
        }
        if (!k.byDefault.isEmpty() || !k.never.isEmpty()) out.append(k);
    }
    return out;
}

// Ticks exactly the rows named, as clicks on their boxes would. Nothing when one is unknown or
// cannot be removed; says why.
std::optional<QList<Finding>> tickNamed(Model& model, const QStringList& ids) {
    QList<Finding> named;
    for (const QString& id : ids) {
        const QList<Finding>& findings = model.scan()->findings;
        const auto it = std::find_if(findings.begin(), findings.end(), [&](const Finding& f) { return f.id == id; });
        if (it == findings.end()) {
            QStringList known;
            for (const Finding& f : findings) known.append(f.id);
            Out::error(model.hiddenRows().contains(id)
                           ? QStringLiteral("the row \"%1\" is hidden; Settings can bring it back.").arg(id)
                           : QStringLiteral("there is no row \"%1\" to clear. Rows: %2.").arg(id, known.join(QStringLiteral(", "))));
            return std::nullopt;
        }
        if (it->removal.isNone()) {
            Out::error(QStringLiteral("%1 is only listed: Quarle doesn't remove it. %2.").arg(it->title, it->comesBack));
            return std::nullopt;
        }
        named.append(*it);
    }
    for (const Finding& f : model.scan()->findings) {
        const bool wanted = ids.contains(f.id);
        if (wanted != (model.tickState(f) != TickState::off)) model.toggle(f);
    }
    return named;
}

void printParts(const QList<Part>& parts) {
    for (const Part& p : parts) {
        QString line = QStringLiteral("      %1  %2").arg(Fmt::bytes(p.bytes).rightJustified(8), p.name);
        if (!p.note.isEmpty()) line += QStringLiteral("  (") + p.note + QLatin1Char(')');
        Out::line(line);
    }
}

void printConfirm(const Confirm& c, const QList<Kept>& kept, bool freeNow) {
    Out::line(QStringLiteral("%1 — %2 %3").arg(c.title, Fmt::bytes(c.bytes),
                                              freeNow ? QStringLiteral("to delete for good") : QStringLiteral("to move to the Trash")));
    if (c.heldElsewhere > 0) Out::line(Sentences::heldElsewhere(c.heldElsewhere));
    for (const Finding& f : c.findings) {
        Out::line(QStringLiteral("  %1  %2  %3").arg(Fmt::bytes(f.bytes).rightJustified(8), f.title, f.place));
        if (f.removal.isCommand())
            Out::line(QStringLiteral("      runs: %1 (it does not go to the Trash)").arg(f.removal.args.join(QLatin1Char(' '))));
        else if (f.parts.size() > 1 || f.partial)
            printParts(f.parts);
    }
    for (const QString& path : c.paths) Out::line(QStringLiteral("  ") + Fmt::path(path));
    for (const Kept& k : kept) {
        if (!k.byDefault.isEmpty()) {
            Out::line(QStringLiteral("Kept from %1: %2").arg(k.finding.title, Picks::keptNote(k.finding.id).value_or(QString())));
            printParts(k.byDefault);
        }
        if (!k.never.isEmpty()) {
            Out::line(QStringLiteral("Never cleared in %1 (Settings can change that):").arg(k.finding.title));
            printParts(k.never);
        }
    }
}

Json confirmJson(const Confirm& c) {
    QStringList apps(c.apps.begin(), c.apps.end());
    apps.sort();
    Json commands = Json::array();
    for (const Finding& f : c.commands()) commands.append(f.id);
    return Json::object()
        .set(QStringLiteral("id"), c.id.toString(QUuid::WithoutBraces))
        .set(QStringLiteral("title"), c.title)
        .set(QStringLiteral("findings"), encodeJsonList(c.findings))
        .set(QStringLiteral("paths"), encodeJson(c.paths))
        .set(QStringLiteral("bytes"), c.bytes)
        .set(QStringLiteral("heldElsewhere"), c.heldElsewhere)
        .set(QStringLiteral("apps"), encodeJson(apps))
        .set(QStringLiteral("commands"), std::move(commands));
}

Json keptJson(const QList<Kept>& kept) {
    Json out = Json::array();
    for (const Kept& k : kept) {
        Json row = Json::object().set(QStringLiteral("id"), k.finding.id).set(QStringLiteral("title"), k.finding.title);
        if (const auto note = Picks::keptNote(k.finding.id)) row.set(QStringLiteral("note"), *note);
        row.set(QStringLiteral("byDefault"), encodeJsonList(k.byDefault)).set(QStringLiteral("never"), encodeJsonList(k.never));
        out.append(std::move(row));
    }
    return out;
}

}  // namespace

int runClean(const QStringList& args) {
    const std::optional<CleanOptions> o = parse(args);
    if (!o) return 2;
    Model model;
    ModelRun::startAndScan(model, o->json);

    std::optional<QList<Finding>> named;
    if (!o->ids.isEmpty() && !(named = tickNamed(model, o->ids))) return 1;
    if (named && named->size() == 1)
        model.askClean(named->first());  // one row's own button: says when nothing in it is ticked
    else
        model.askClean(o->developer);
    const QList<Kept> kept = keptParts(model, o->developer);
    Json out = Json::object();
    if (!model.confirm()) {
        const QString why = model.toast().value_or(QStringLiteral("Nothing is ticked to clear."));
        if (o->json) {
            Out::raw(out.set(QStringLiteral("confirm"), Json()).set(QStringLiteral("kept"), keptJson(kept)).set(QStringLiteral("toast"), why).toText());
        } else if (named) {
            Out::error(why);  // the rows asked for give nothing to clear
        } else {
            Out::line(why);
        }
        return named ? 1 : 0;
    }
    const Confirm confirm = *model.confirm();
    if (o->json)
        out.set(QStringLiteral("confirm"), confirmJson(confirm)).set(QStringLiteral("kept"), keptJson(kept));
    else
        printConfirm(confirm, kept, o->freeNow);
    if (o->dryRun) {
        if (o->json) Out::raw(out.toText());
        return 0;
    }
    const QString question = o->freeNow
                                 ? QStringLiteral("Delete %1 for good? It won't go to the Trash.").arg(Fmt::bytes(confirm.bytes))
                                 : QStringLiteral("Move %1 to the Trash? History can restore it %2.").arg(Fmt::bytes(confirm.bytes), model.keepFor());
    if (!ModelRun::agree(question, o->yes)) {
        Out::line(QStringLiteral("Nothing was removed."));
        return 1;
    }
    ModelRun::Reports reports(model);
    model.perform(confirm, o->freeNow);
    const ActionReport report = reports.wait();
    if (o->json) {
        out.set(QStringLiteral("toast"), report.toast);
        if (report.entry) out.set(QStringLiteral("entry"), report.entry->toString(QUuid::WithoutBraces).toUpper());
        Json refused = Json::array();
        for (const Remover::Refused& r : report.refused) refused.append(r.refusal.description());
        out.set(QStringLiteral("refused"), std::move(refused)).set(QStringLiteral("failed"), encodeJson(report.failed));
        Out::raw(out.toText());
        return report.ok() ? 0 : 1;
    }
    const int status = ModelRun::printReport(report);
    if (report.entry)
        Out::line(QStringLiteral("History entry: ") + report.entry->toString(QUuid::WithoutBraces).toUpper());
    return status;
}

bool cleanOptionsParse(const QStringList& args) { return parse(args).has_value(); }
