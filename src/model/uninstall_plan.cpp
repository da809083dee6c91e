#include "model/uninstall_plan.h"

#include "core/checked.h"

namespace UninstallPlan {

Plan plan(const InstalledApp& app, const QSet<QString>& ticked) {
    Plan p;
    p.paths.append(app.path);
    p.apps.insert(app.path);
    p.bytes = app.appBytes;
    for (const Leftover& l : app.leftovers) {
        if (!ticked.contains(l.path)) continue;
        p.paths.append(l.path);
        p.bytes = Checked::add(p.bytes, l.bytes);
    }
    return p;
}

}  // namespace UninstallPlan
