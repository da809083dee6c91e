// Clearing: what the ticks would remove, the confirmation, the removal itself and what follows it.

#include <algorithm>

#include "core/checked.h"
#include "core/fmt.h"
#include "core/home.h"
#include "core/paths.h"
#include "model/model.h"
#include "model/sentences.h"
#include "model/targets.h"

namespace {

using Targets::Target;

// What the background removal did.
struct Removed {
    Remover::Outcome outcome;
    QList<Finding> commandsDone;
    QStringList commandsFailed;  // their titles
};

qint64 sumOf(const QList<Part>& parts) {
    qint64 total = 0;
    for (const Part& p : parts) total = Checked::add(total, p.bytes);
    return total;
}

Finding narrowed(const Finding& f, const QList<Part>& chosen, qsizetype offered) {
    Finding n = f;
    n.parts = chosen;
    n.paths.clear();
    for (const Part& p : chosen) n.paths.append(p.path);
    n.bytes = sumOf(chosen);
    n.partial = f.partial || chosen.size() < offered;
    return n;
}

}  // namespace

std::optional<Finding> Model::asCleared(const Finding& f) const {
    const QList<Part> offered = f.removal.isTrash() ? inside(f) : QList<Part>();
    if (offered.isEmpty()) return f;  // commands and rows without parts go whole
    const QList<Part> parts = chosen(f);
    if (parts.isEmpty()) return std::nullopt;
    return narrowed(f, parts, offered.size());
}

QList<Finding> Model::clearing(bool developerOnly) const {
    QList<Finding> out;
    if (!scan_) return out;
    for (const Finding& f : scan_->findings) {
        if (!ticked_.contains(f.id) || f.removal.isNone() || (developerOnly && !f.developer)) continue;
        if (const std::optional<Finding> cleared = asCleared(f)) out.append(*cleared);
    }
    return out;
}

void Model::askFor(const QList<Finding>& findings) {
    Confirm c;
    c.id = QUuid::createUuid();
    c.title = findings.size() == 1 ? findings.first().title : Fmt::count(findings.size(), QStringLiteral("item"));
    for (const Finding& f : findings) {
        c.bytes = Checked::add(c.bytes, f.bytes);
        if (data_)
            for (const Part& p : f.parts) c.heldElsewhere = Checked::add(c.heldElsewhere, data_->heldElsewhere.value(p.path));
    }
    c.findings = findings;
    c.apps = installerApps(findings);
    assignConfirm(std::move(c));
}

void Model::askClean(bool only) {
    const QList<Finding> findings = clearing(only);
    if (!findings.isEmpty()) askFor(findings);
}

void Model::askClean(const Finding& finding) {
    if (finding.removal.isNone()) return;
    if (const std::optional<Finding> cleared = asCleared(finding))
        askFor({*cleared});
    else
        assignToast(Sentences::nothingTickedIn(finding.title));
}

void Model::perform(const Confirm& given, bool freeNow) {
    const Confirm confirm = given;  // the sheet's own record, which closing it destroys
    assignConfirm(std::nullopt);
    if (demo_) {
        finishAction(ActionReport::of(ActionReport::Kind::removal, Sentences::demoRemoved));
        return;
    }
    assignToast(Sentences::working);
    assignJobs(jobs_ + 1);

    const SpaceNode* tree = scan_ ? &scan_->home : nullptr;
    QStringList paths;
    QHash<QString, qint64> known;
    QList<Finding> commands;
    for (const Finding& f : confirm.findings) {
        if (f.removal.isCommand()) {
            commands.append(f);
            continue;
        }
        if (!f.removal.isTrash()) continue;
        for (const Target& t : Targets::of(f, tree)) {
            paths.append(t.part.path);
            if (t.part.bytes > 0) known.insert(t.part.path, t.part.bytes);
        }
    }
    for (const QString& path : confirm.paths) {
        paths.append(path);
        if (const SpaceNode* node = tree ? tree->find(path) : nullptr) known.insert(path, node->bytes);
    }
    const std::shared_ptr<HistoryStore> store = store_;
    const QString title = confirm.title;
    const QSet<QString> apps = confirm.apps;
    inBackground<Removed>(
        Priority::userInitiated, Job::removal,
        [=] {
            Removed r;
            if (!paths.isEmpty()) r.outcome = Remover::trash(paths, title, freeNow, *store, apps, known);
            for (const Finding& c : commands) {
                const std::optional<QString> why = Remover::command(c.removal.args, c.title, c.bytes, *store);
                if (!why)
                    r.commandsDone.append(c);
                else
                    r.commandsFailed.append(c.title + QStringLiteral(": ") + *why);
            }
            return r;
        },
        [this, confirm, freeNow](Removed r) {
            landRemoval(confirm, freeNow, r.outcome, r.commandsDone, r.commandsFailed);
        });
}

void Model::landRemoval(const Confirm& confirm, bool freeNow, const Remover::Outcome& outcome,
                        const QList<Finding>& commandsDone, const QStringList& commandsFailed) {
    assignJobs(jobs_ - 1);
    loadHistory();
    markEdited();

    // Which row and part each path stood for, under the path as given and as History records it.
    const SpaceNode* tree = scan_ ? &scan_->home : nullptr;
    QHash<QString, Target> byPath;
    const auto remember = [&](const Target& t) {
        byPath.insert(t.part.path, t);
        byPath.insert(Paths::standardize(t.part.path, Home::path()), t);
    };
    for (const Finding& f : confirm.findings)
        for (const Target& t : Targets::of(f, tree)) remember(t);
    for (const QString& path : confirm.paths) {
        const SpaceNode* node = tree ? tree->find(path) : nullptr;
        remember(Targets::plain(path, node ? node->bytes : 0));
    }

    QStringList removed;
    qint64 bytes = outcome.entry.bytes;
    for (const HistoryEntry::Moved& m : outcome.entry.moved) {
        removed.append(m.original);
        if (!data_) continue;
        Target t = byPath.value(m.original, Targets::plain(m.original, m.bytes));
        t.part.bytes = m.bytes;
        data_->removed(t.finding, t.part, freeNow ? std::nullopt : std::optional<QString>(m.trashed));
    }
    for (const Finding& f : commandsDone) {
        bytes = Checked::add(bytes, f.bytes);
        for (const Target& t : Targets::of(f, tree)) {
            removed.append(t.part.path);
            if (data_) data_->removed(t.finding, t.part);
        }
    }
    if (data_) {
        data_->quarleTrash = inTrashBytes();
        deriveInBackground();
    }
    afterRemoving(removed);
    afterAction();

    ActionReport report = ActionReport::of(ActionReport::Kind::removal);
    // Only commands ran: nothing went to the Trash, so nothing can be restored from it.
    const bool freed = freeNow || (outcome.entry.moved.isEmpty() && outcome.refused.isEmpty() &&
                                   outcome.failed.isEmpty() && !commandsDone.isEmpty());
    report.failed = outcome.failed + outcome.holdingMounts + commandsFailed;
    report.toast = Sentences::cleared(freed, bytes, outcome.refused.size(), report.failed.size(), keepDays_);
    if (!outcome.vanished.isEmpty()) report.toast += QLatin1Char(' ') + Sentences::movedAway(outcome.vanished.size());
    report.saved = outcome.saved;
    if (!report.saved) report.toast += QLatin1Char(' ') + Sentences::historyNotSaved;
    if (!outcome.entry.moved.isEmpty()) report.entry = outcome.entry.id;
    report.bytes = bytes;
    report.refused = outcome.refused;
    finishAction(std::move(report));
}

void Model::afterRemoving(const QStringList& paths) {
    if (paths.isEmpty()) return;
    if (scan_) {
        ScanResult shown = *scan_;
        for (const QString& p : paths)
            if (const SpaceNode* node = shown.home.find(p); node && node != &shown.home)
                shown.home.prune(p, node->bytes);
        assignScan(std::move(shown));
    }
    for (auto it = lazyKids_.begin(); it != lazyKids_.end();) {
        const bool gone = std::any_of(paths.begin(), paths.end(), [&](const QString& p) { return Paths::isWithin(it.key(), p); });
        if (gone) {
            it = lazyKids_.erase(it);
            continue;
        }
        it->removeIf([&](const SpaceNode& kid) { return paths.contains(kid.path); });
        ++it;
    }
    Picks p = picks_;
    for (const QString& path : paths) {
        p.off.remove(path);
        p.on.remove(path);
    }
    if (p != picks_) assignPicks(std::move(p));
    insideCache_.clear();
    recomputeClearable();
    rebuildColumns();
    // The lazily listed columns are listed again by afterAction(), which follows every removal.
}

void Model::afterAction() {
    appsChanges_ = Checked::add(appsChanges_, 1);
    diskEpoch_ = Checked::add(diskEpoch_, 1);
    // Reloaded only once the Apps page has asked for the list.
    if (appsLoaded_ || appsLoading_) loadApps();
    if (!demo_) {
        const ModelServices s = services_;
        inBackground<Volume>(Priority::utility, Job::refresh, [s] { return s.volume(); },
                             [this](Volume v) { assignVolume(std::move(v)); });
    }
    refreshLazyColumns();
    // Some file systems hand freed blocks back a moment later: look at the figures once more.
    QTimer::singleShot(services_.followUpAfter, this, [this] {
        refreshVolume();
        refreshLazyColumns();
    });
}

void Model::finishAction(ActionReport report) {
    assignToast(report.toast);
    emit reported(report);
}
