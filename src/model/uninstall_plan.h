#pragma once
// What uninstalling an app removes: the paths that go to the Trash and the commands that run.
// Today an app is its bundle and the leftovers the user ticked; packages that the platform installs
// by command (a Flatpak, an AppImage with its desktop entry) add their commands and paths here.

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include "core/records.h"

namespace UninstallPlan {

struct Plan {
    QStringList paths;        // to the Trash, the bundle first
    QList<Finding> commands;  // removals run by command, each a finding with a command removal
    QSet<QString> apps;       // bundles among the paths, which may lie outside the home
    qint64 bytes = 0;

    bool operator==(const Plan&) const = default;
};

// The app's bundle followed by its leftovers that are in `ticked`, in the app's order.
Plan plan(const InstalledApp& app, const QSet<QString>& ticked);

}  // namespace UninstallPlan
