#include "model/uninstall_plan.h"

#include "apps/app_removal.h"
#include "core/checked.h"

namespace UninstallPlan {

Plan plan(const InstalledApp& app, const QSet<QString>& ticked) {
    Plan p;
    const AppRemoval::Plan how = AppRemoval::plan(app);
    if (how.refused()) {
        p.refusal = how.refusal;
        return p;
    }
    if (how.removal.isCommand()) {
        // Recorded in History as removed for good: flatpak keeps no copy to put back.
        Finding f;
        f.id = QStringLiteral("uninstall:") + app.bundleID;
        f.title = QStringLiteral("Uninstall ") + app.name;
        f.place = app.path;
        f.bytes = app.appBytes;
        f.bucket = Bucket::call;
        f.removal = how.removal;
        f.paths = {app.path};
        p.commands.append(f);
    } else {
        p.paths.append(app.path);
        p.paths.append(how.alsoTrash);
        if (app.path.endsWith(QLatin1String(".app"))) p.apps.insert(app.path);
    }
    p.bytes = app.appBytes;
    for (const Leftover& l : app.leftovers) {
        if (!ticked.contains(l.path)) continue;
        p.paths.append(l.path);
        p.bytes = Checked::add(p.bytes, l.bytes);
    }
    return p;
}

}  // namespace UninstallPlan
