// History's actions: putting items back, emptying one entry or all of Quarle's items from the
// Trash, and how long items are kept.

#include <sys/stat.h>

#include <algorithm>

#include "core/checked.h"
#include "core/home.h"
#include "core/paths.h"
#include "core/prefs.h"
#include "model/model.h"
#include "model/sentences.h"
#include "scan/extras.h"

namespace {

bool isFolder(const QString& path) {
    struct stat st;
    return ::lstat(Paths::toBytes(path).constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

// The extra rows a restored path may belong to.
QSet<QString> extrasAround(const QString& path) {
    QSet<QString> ids;
    if (Paths::isWithin(path, Home::at(QStringLiteral("Downloads"))))
        ids.unite({QStringLiteral("installers"), QStringLiteral("unfinished")});
    for (const QString& folder : Scanner::applicationFolders())
        if (Paths::isWithin(path, folder)) ids.insert(QStringLiteral("macosinstallers"));
    if (Paths::lastComponent(path) == QLatin1String("node_modules")) ids.insert(QStringLiteral("nodemodules"));
    return ids;
}

// Runs the scan's own checks for `ids` again, as a scan would at `now`.
QList<Finding> refind(const QSet<QString>& ids, const SpaceNode& tree, const QDateTime& now) {
    const QString home = Home::path();
    QList<std::optional<Finding>> found;
    if (ids.contains(QStringLiteral("nodemodules"))) found.append(Scanner::idleNodeModules(tree, {}, 90, now));
    if (ids.contains(QStringLiteral("installers")))
        found.append(Scanner::installers(home, Scanner::installedAppNames(), now));
    if (ids.contains(QStringLiteral("unfinished"))) found.append(Scanner::unfinishedDownloads(home, now));
    if (ids.contains(QStringLiteral("macosinstallers")))
        found.append(Scanner::macOSInstallers(Scanner::applicationFolders().first(), now));
    QList<Finding> out;
    for (const auto& f : found)
        if (f) out.append(*f);
    return out;
}

}  // namespace

QString Model::keepFor() const { return Sentences::keepFor(keepDays_); }

void Model::restore(const HistoryEntry& entry, const std::optional<QSet<QString>>& only) {
    if (demo_) {
        finishAction(ActionReport::of(ActionReport::Kind::restore, Sentences::demoRestored));
        return;
    }
    assignJobs(jobs_ + 1);
    const std::shared_ptr<HistoryStore> store = store_;
    inBackground<Remover::Restored>(
        Priority::userInitiated, Job::restore, [store, entry, only] { return Remover::restore(entry, only, *store); },
        [this, entry, only](Remover::Restored r) {
            assignJobs(jobs_ - 1);
            loadHistory();
            markEdited();
            QStringList back;
            qint64 bytes = 0;
            for (const HistoryEntry::Moved& m : entry.moved) {
                if ((only && !only->contains(m.original)) || r.notBack.contains(m.original)) continue;
                back.append(m.original);
                bytes = Checked::add(bytes, m.bytes);
                // Items cleared in an earlier run were never parked: the tree learns their size here.
                if (data_ && !data_->restored(m.original) && Paths::isWithin(m.original, data_->home.path))
                    data_->home.adjust(m.original, m.bytes, true, isFolder(m.original));
            }
            if (data_) {
                data_->quarleTrash = inTrashBytes();
                deriveInBackground();
            }
            afterAction();
            refindExtras(back);
            QStringList reasons;
            for (const Remover::NotBack& n : r.why) reasons.append(Sentences::whyNotBack(n.why));
            QString toast = Sentences::restored(r.count, reasons, r.foldersIn);
            if (!r.saved) toast += QLatin1Char(' ') + Sentences::historyNotSaved;
            ActionReport report = ActionReport::of(ActionReport::Kind::restore, toast);
            report.bytes = bytes;
            report.notBack = r.notBack;
            report.saved = r.saved;
            finishAction(std::move(report));
        });
}

void Model::refindExtras(const QStringList& restored) {
    if (!data_) return;
    QSet<QString> ids;
    for (const QString& path : restored) ids.unite(extrasAround(path));
    if (ids.isEmpty()) return;
    const SpaceNode tree = data_->home;
    const QDateTime when = now();
    const QUuid token = scanToken_;
    inBackground<QList<Finding>>(
        Priority::utility, Job::refind, [ids, tree, when] { return refind(ids, tree, when); },
        [this, ids, token](QList<Finding> found) {
            if (!data_ || token != scanToken_) return;  // a newer scan looked for itself
            QList<Finding>& extras = data_->extras;
            extras.removeIf([&](const Finding& f) { return ids.contains(f.id); });
            extras.append(found);
            const QStringList& order = Scanner::extraIDs();
            std::stable_sort(extras.begin(), extras.end(),
                             [&](const Finding& a, const Finding& b) { return order.indexOf(a.id) < order.indexOf(b.id); });
            refreshNumbers();
        });
}

void Model::emptyNow(const HistoryEntry& entry, bool confirmed) {
    if (demo_) {
        finishAction(ActionReport::of(ActionReport::Kind::emptying, Sentences::demoEmptied));
        return;
    }
    const HistoryEntry current = store_->current(entry.id).value_or(entry);
    if (current.state != HistoryEntry::State::inTrash) return;
    if (!confirmed) {
        assignAsk(Ask{QUuid::createUuid(), Sentences::emptyEntryTitle(current.title),
                      Sentences::emptyEntryMessage(current.bytes), Sentences::emptyButton,
                      [this, current] { emptyNow(current, true); }});
        return;
    }
    emptyEntries({current});
}

void Model::emptyAll(bool confirmed) {
    QList<HistoryEntry> inTrash;
    qint64 total = 0;
    qsizetype items = 0;
    for (const HistoryEntry& e : history_) {
        if (e.state != HistoryEntry::State::inTrash) continue;
        inTrash.append(e);
        total = Checked::add(total, e.bytes);
        items += e.moved.size();
    }
    if (inTrash.isEmpty()) return;
    if (demo_) {
        finishAction(ActionReport::of(ActionReport::Kind::emptying, Sentences::demoEmptied));
        return;
    }
    if (!confirmed) {
        assignAsk(Ask{QUuid::createUuid(), Sentences::emptyAllTitle(total), Sentences::emptyAllMessage(items),
                      Sentences::emptyButton, [this] { emptyAll(true); }});
        return;
    }
    emptyEntries(inTrash);
}

void Model::emptyEntries(const QList<HistoryEntry>& entries) {
    qint64 total = 0;
    for (const HistoryEntry& e : entries) total = Checked::add(total, e.bytes);
    assignToast(Sentences::emptying(total));
    assignJobs(jobs_ + 1);
    const std::shared_ptr<HistoryStore> store = store_;
    inBackground<Remover::Emptied>(
        Priority::userInitiated, Job::emptying,
        [store, entries] {
            Remover::Emptied all;
            for (const HistoryEntry& e : entries) all += Remover::empty(e, *store);
            return all;
        },
        [this, total](Remover::Emptied done) {
            assignJobs(jobs_ - 1);
            trashChanged(total);
            const qint64 freed = done.left.isEmpty() ? total : done.bytes;
            QString toast = done.left.isEmpty() ? Sentences::emptied(total) : Sentences::emptiedPartly(freed, done.left.size());
            if (!done.saved) toast += QLatin1Char(' ') + Sentences::historyNotSaved;
            ActionReport report = ActionReport::of(ActionReport::Kind::emptying, toast);
            report.failed = done.left;
            report.saved = done.saved;
            finishAction(std::move(report));
        });
}

void Model::setKeepDays(int days, bool confirmed) {
    if (days == keepDays_) return;
    if (days >= 1 && !confirmed) {
        const QDateTime when = now();
        const qint64 keepSeconds = Checked::mul(days, 86400);
        qsizetype entries = 0;
        qint64 bytes = 0;
        for (const HistoryEntry& e : history_) {
            if (e.state != HistoryEntry::State::inTrash || e.date.secsTo(when) <= keepSeconds) continue;
            ++entries;
            bytes = Checked::add(bytes, e.bytes);
        }
        if (entries > 0) {
            assignAsk(Ask{QUuid::createUuid(), Sentences::keepDaysTitle(days), Sentences::keepDaysMessage(entries, bytes),
                          Sentences::keepDaysButton(days), [this, days] { setKeepDays(days, true); }});
            return;
        }
    }
    const bool saved = savePref(QStringLiteral("keepDays"), days);
    assignKeepDays(days);
    if (demo_) {
        emit reported(ActionReport::of(ActionReport::Kind::keepDays));
        return;
    }
    tidyTrash(true, false, [this, saved](qint64 emptied) {
        ActionReport report = ActionReport::of(ActionReport::Kind::keepDays);
        report.bytes = emptied;
        report.saved = saved;
        emit reported(report);
    });
}
