#pragma once
// How an installed app is removed, decided from its record alone so that the model can build the
// confirmation: an app bundle goes to the Trash; a Flatpak of the user's installation is removed
// by flatpak itself (its deployed files live in flatpak's repository, which only flatpak may
// change); one of the system's installation needs an administrator and is refused; an AppImage
// goes to the Trash together with the desktop entries and icons that made it appear in the menu.

#include <QString>
#include <QStringList>

#include "apps/system_folders.h"
#include "core/kinds.h"
#include "core/records.h"

namespace AppRemoval {

enum class Origin { bundle, userFlatpak, systemFlatpak, appImage };

// Told by the app's path alone, the model's identity of an app: "<installation>/app/<id>" of the
// user's or the system's Flatpak installation, a bundle ending in ".app", else an AppImage file.
Origin origin(const InstalledApp& app, const SystemFolders& folders = SystemFolders::current());

struct Plan {
    Removal removal;        // trash (with alsoTrash), command (for a user Flatpak), or none (refused)
    QString refusal;        // why not, a sentence to show; empty unless refused
    QStringList alsoTrash;  // an AppImage's desktop entries and icons, to trash with the app's path

    bool refused() const { return removal.isNone(); }
    bool operator==(const Plan&) const = default;
};

// The user Flatpak's command is "flatpak uninstall --user -y ID", ID being the name of its folder
// (its leftovers, such as ~/.var/app/ID, go to the Trash as usual). An AppImage takes with it its desktop entries in the
// user's applications folder (those whose Exec or TryExec is the AppImage) and, under the user's
// icons folder, the icon files their Icon names, unless another of the user's desktop entries
// uses the same icon.
Plan plan(const InstalledApp& app, const SystemFolders& folders = SystemFolders::current());

}  // namespace AppRemoval
