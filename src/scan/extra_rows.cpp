// The fixed texts of the scan's own rows, in one place for the checks and the demonstration.

#include "scan/extras.h"

#include "scan/catalogue.h"

namespace {

Finding row(const char* id, const char* title, Bucket bucket, const char* explain, const QString& comesBack,
            Removal removal, bool developer) {
    Finding f;
    f.id = QLatin1String(id);
    f.title = QString::fromUtf8(title);
    f.bucket = bucket;
    f.explain = QString::fromUtf8(explain);
    f.comesBack = comesBack;
    f.removal = std::move(removal);
    f.developer = developer;
    return f;
}

}  // namespace

namespace Scanner {

const QStringList& extraIDs() {
    static const QStringList ids{QStringLiteral("nodemodules"), QStringLiteral("installers"),
                                 QStringLiteral("unfinished"), QStringLiteral("macosinstallers"),
                                 QStringLiteral("unavailablesims"), QStringLiteral("electroncaches"),
                                 QStringLiteral("flatpakcaches")};
    return ids;
}

Finding extraRow(const QString& id) {
    namespace C = ComesBack;
    const Removal trash = Removal::trash();
    if (id == QLatin1String("nodemodules"))
        return row("nodemodules", "node_modules in projects idle for 90 days", Bucket::call,
                   "Packages installed for projects nothing has touched in three months. npm install brings them "
                   "back, but the project needs the network and the same package versions to still exist.",
                   C::npmInstall, trash, true);
    if (id == QLatin1String("installers"))
        return row("installers", "Installers in Downloads", Bucket::call,
                   "Disk images and packages you downloaded to install apps. Once the app is installed, the "
                   "installer isn't needed unless you want to install it again offline.",
                   C::fromMaker, trash, false);
    if (id == QLatin1String("unfinished"))
        return row("unfinished", "Unfinished downloads", Bucket::now,
                   "Downloads your browser started but never finished (.crdownload, .part, .download). They can't "
                   "be opened as they are. Anything from the last day is left alone in case it's still "
                   "downloading.",
                   C::ifYouNeedIt, trash, false);
    if (id == QLatin1String("macosinstallers"))
        return row("macosinstallers", "macOS installers", Bucket::call,
                   "The full macOS installer that the App Store downloads to upgrade or reinstall. Once you've "
                   "upgraded it isn't needed; keep one only if you make USB installers.",
                   C::fromAppStore, trash, false);
    if (id == QLatin1String("unavailablesims"))
        return row("unavailablesims", "Simulators that can't run any more", Bucket::call,
                   "Simulators for runtimes your Xcode no longer has. They can't boot. Quarle removes them with "
                   "Xcode's own simctl, so they don't go to the Trash.",
                   C::goneForGood,
                   Removal::command({QStringLiteral("/usr/bin/xcrun"), QStringLiteral("simctl"),
                                     QStringLiteral("delete"), QStringLiteral("unavailable")}),
                   true);
    if (id == QLatin1String("electroncaches"))
        return row("electroncaches", "Caches of Electron apps", Bucket::now,
                   "Apps built on Chromium, such as VS Code, Slack and Discord, keep downloaded files and compiled "
                   "code in their settings folders so they start faster. They make them again as you use them. "
                   "Apps that are open are left alone.",
                   C::byItself, trash, false);
    if (id == QLatin1String("flatpakcaches"))
        return row("flatpakcaches", "Flatpak app caches", Bucket::now,
                   "Caches that apps installed with Flatpak keep in their own folders. Apps rebuild them when they "
                   "need them; apps that are open are left alone.",
                   C::byItself, trash, false);
    return {};
}

}  // namespace Scanner
