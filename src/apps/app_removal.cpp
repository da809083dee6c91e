#include "apps/app_removal.h"

#include "apps/app_images.h"
#include "apps/flatpak_apps.h"
#include "apps/sorted_entries.h"
#include "core/home.h"
#include "core/paths.h"
#include "platform/xdg.h"

namespace {

// Icon themes nest "<theme>/<size>/<context>/<icon>.png"; a little deeper is still looked at.
constexpr int iconDepth = 5;

const QStringList iconExtensions{QStringLiteral(".png"), QStringLiteral(".svg"), QStringLiteral(".svgz"),
                                 QStringLiteral(".xpm")};

bool isFlatpakOf(const InstalledApp& app, const QString& installation) {
    return Paths::parentOf(app.path) == installation + QStringLiteral("/app");
}

// The files under `folder` named icon + one of the extensions.
void findIcons(const QString& folder, const QString& icon, int depth, QStringList& into) {
    for (const Walker::Entry& e : sortedEntries(folder)) {
        const QString path = folder + QLatin1Char('/') + e.name;
        if (e.isDir && depth > 0) {
            findIcons(path, icon, depth - 1, into);
        } else if (!e.isDir && e.name.startsWith(icon)) {
            const QString rest = e.name.mid(icon.size());
            if (iconExtensions.contains(rest)) into.append(path);
        }
    }
}

// The desktop entries that launch the AppImage, and the icons only they use.
QStringList integrationFiles(const QString& appImage) {
    const QList<DesktopEntry> entries = AppImages::userEntries();
    const QList<DesktopEntry> own = AppImages::entriesFor(appImage, entries);
    QStringList out;
    QStringList icons;
    for (const DesktopEntry& e : own) {
        out.append(e.path);
        if (!e.icon.isEmpty() && !icons.contains(e.icon)) icons.append(e.icon);
    }
    const QString iconFolder = Xdg::dataHome() + QStringLiteral("/icons");
    for (const QString& icon : icons) {
        const bool shared = std::any_of(entries.cbegin(), entries.cend(), [&](const DesktopEntry& e) {
            return e.icon == icon && !own.contains(e);
        });
        if (shared) continue;
        if (icon.startsWith(QLatin1Char('/'))) {
            // An icon given by its path is taken only from the user's icons folder.
            const QString path = Paths::standardize(icon, Home::path());
            if (Paths::isWithin(path, iconFolder) && !out.contains(path)) out.append(path);
        } else if (!icon.contains(QLatin1Char('/'))) {
            findIcons(iconFolder, icon, iconDepth, out);
        }
    }
    return out;
}

}  // namespace

namespace AppRemoval {

Origin origin(const InstalledApp& app, const SystemFolders& folders) {
    if (isFlatpakOf(app, FlatpakApps::userInstallation())) return Origin::userFlatpak;
    if (isFlatpakOf(app, folders.flatpak)) return Origin::systemFlatpak;
    if (app.path.endsWith(QLatin1String(".app"))) return Origin::bundle;
    return Origin::appImage;
}

Plan plan(const InstalledApp& app, const SystemFolders& folders) {
    switch (origin(app, folders)) {
    case Origin::userFlatpak:
        return {Removal::command({QStringLiteral("flatpak"), QStringLiteral("uninstall"), QStringLiteral("--user"),
                                  QStringLiteral("-y"), Paths::lastComponent(app.path)}),
                {}, {}};
    case Origin::systemFlatpak:
        return {Removal::none(),
                QStringLiteral("%1 is installed for all users of this computer, so removing it needs an administrator.")
                    .arg(app.name),
                {}};
    case Origin::appImage:
        return {Removal::trash(), {}, integrationFiles(app.path)};
    case Origin::bundle:
        break;
    }
    return {Removal::trash(), {}, {}};
}

}  // namespace AppRemoval
