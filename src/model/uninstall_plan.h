#pragma once
// What uninstalling an app removes: the paths that go to the Trash and the commands that run. A
// bundle or an AppImage goes to the Trash (an AppImage with the desktop entries and icons that put
// it in the menu); a Flatpak of the user's installation is removed by flatpak itself, its leftovers
// going to the Trash as usual; one of the system's installation needs an administrator.

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include "core/records.h"

namespace UninstallPlan {

struct Plan {
    QStringList paths;        // to the Trash, the app first
    QList<Finding> commands;  // removals run by command, each a finding with a command removal
    QSet<QString> apps;       // bundles among the paths, which may lie outside the home
    qint64 bytes = 0;
    QString refusal;          // why the app cannot be uninstalled here; empty when it can

    bool operator==(const Plan&) const = default;
};

// The app and its leftovers that are in `ticked`, in the app's order.
Plan plan(const InstalledApp& app, const QSet<QString>& ticked);

}  // namespace UninstallPlan
