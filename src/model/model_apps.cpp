// The Apps and Login items pages: loading the lists, focus, leftover ticks, uninstalling and
// removing what apps that are gone left behind.

#include <sys/stat.h>

#include <algorithm>

#include "core/checked.h"
#include "core/paths.h"
#include "model/model.h"
#include "model/sentences.h"
#include "model/uninstall_plan.h"
#include "removal/safety.h"

namespace {

template <class T>
qsizetype indexOf(const QList<T>& list, const std::optional<QString>& id) {
    if (!id) return -1;
    for (qsizetype i = 0; i < list.size(); ++i)
        if (list[i].id() == *id) return i;
    return -1;
}

// The row to focus in a fresh list: the same one, or when it is gone the one now in its place.
template <class T>
std::optional<T> carried(const QList<T>& fresh, const std::optional<QString>& id, qsizetype oldIndex) {
    if (const qsizetype i = indexOf(fresh, id); i >= 0) return fresh[i];
    if (fresh.isEmpty() || oldIndex < 0) return std::nullopt;
    return fresh[std::min(oldIndex, fresh.size() - 1)];
}

QSet<QString> sureOnes(const QList<Leftover>& leftovers) {
    QSet<QString> out;
    for (const Leftover& l : leftovers)
        if (l.confidence == Confidence::sure) out.insert(l.path);
    return out;
}

}  // namespace

void Model::loadApps() {
    if (demo_ || appsLoading_) return;
    assignAppsLoading(true);
    const qint64 started = appsChanges_;
    const ModelServices s = services_;
    const std::shared_ptr<ScanCancel> closing = closing_;
    inBackground<AppScanner::Result>(
        Priority::utility, Job::apps, [s, closing] { return s.scanApps([closing] { return closing->stopped(); }); },
        [this, started](AppScanner::Result result) {
            if (appsChanges_ != started) {  // something was removed meanwhile: the list may be stale
                assignAppsLoading(false);
                loadApps();
                return;
            }
            const qsizetype appAt = indexOf(apps_, appFocus_);
            const qsizetype orphanAt = indexOf(orphans_, orphanFocus_);
            assignApps(std::move(result.apps));
            assignOrphans(std::move(result.orphans));
            assignAppsLoading(false);
            assignAppsLoaded(true);
            if (appFocus_) {
                if (const auto app = carried(apps_, appFocus_, appAt))
                    focusApp(*app);
                else
                    assignAppFocus(std::nullopt);
            } else if (orphanFocus_) {
                if (const auto orphan = carried(orphans_, orphanFocus_, orphanAt))
                    focusOrphan(*orphan);
                else
                    assignOrphanFocus(std::nullopt);
            }
        });
}

void Model::loadLoginItems() {
    if (demo_ || loginItemsLoading_) return;
    assignLoginItemsLoading(true);
    const ModelServices s = services_;
    inBackground<QList<LoginItem>>(Priority::utility, Job::loginItems, [s] { return s.loginItems(); },
                                   [this](QList<LoginItem> items) {
                                       assignLoginItems(std::move(items));
                                       assignLoginItemsLoading(false);
                                       assignLoginItemsLoaded(true);
                                   });
}

QSet<QString> Model::defaultTicks(const std::optional<InstalledApp>& app) const {
    return app ? sureOnes(app->leftovers) : QSet<QString>();
}

void Model::focusApp(const InstalledApp& app) {
    assignAppFocus(app.id());
    assignOrphanFocus(std::nullopt);  // one row of the page has the focus
    assignLeftoverTicks(defaultTicks(app));
}

void Model::focusOrphan(const Orphan& orphan) {
    assignOrphanFocus(orphan.id());
    assignAppFocus(std::nullopt);
    assignLeftoverTicks(sureOnes(orphan.leftovers));
}

void Model::toggleLeftover(const QString& path) {
    QSet<QString> ticks = leftoverTicks_;
    if (!ticks.remove(path)) ticks.insert(path);
    assignLeftoverTicks(std::move(ticks));
}

// An app runs when the platform lists its identifier (a running Flatpak sandbox), or when one of the
// user's processes runs its very file: an AppImage's runtime keeps running from the file while the
// app is open. Only an app that is one file is looked for among the processes.
bool Model::runs(const InstalledApp& app) const {
    if (!app.bundleID.isEmpty() && services_.runningApps().contains(app.bundleID)) return true;
    struct stat st;
    if (::stat(Paths::toBytes(app.path).constData(), &st) != 0 || !S_ISREG(st.st_mode)) return false;
    const QSet<QString> files = services_.runningFiles();
    return files.contains(app.path) || files.contains(Safety::realPath(app.path).value_or(app.path));
}

void Model::askUninstall(const InstalledApp& app) {
    const UninstallPlan::Plan plan = UninstallPlan::plan(app, leftoverTicks_);
    if (!demo_ && runs(app)) {
        assignToast(Sentences::quitFirst(app.name));
        return;
    }
    if (!plan.refusal.isEmpty()) {
        assignToast(plan.refusal);
        return;
    }
    assignConfirm(Confirm{QUuid::createUuid(), QStringLiteral("Uninstall ") + app.name, plan.commands, plan.paths,
                          plan.bytes, plan.apps});
}

void Model::askRemoveOrphan(const Orphan& orphan) {
    QStringList paths;
    qint64 bytes = 0;
    for (const Leftover& l : orphan.leftovers) {
        if (!leftoverTicks_.contains(l.path)) continue;
        paths.append(l.path);
        bytes = Checked::add(bytes, l.bytes);
    }
    if (paths.isEmpty()) {
        assignToast(Sentences::nothingOfTicked(orphan.name));
        return;
    }
    assignConfirm(Confirm{QUuid::createUuid(), QStringLiteral("Leftovers of ") + orphan.name, {}, paths, bytes, {}});
}

QSet<QString> Model::installerApps(const QList<Finding>& findings) {
    QSet<QString> out;
    for (const Finding& f : findings) {
        if (f.id != QLatin1String("macosinstallers")) continue;
        for (const Part& p : f.parts)
            if (p.path.startsWith(QLatin1String("/Applications/"))) out.insert(p.path);
    }
    return out;
}
