// quarle apps [--json], quarle orphans [--json], quarle login-items [--json]

#include "apps/linux_login_items.h"
#include "apps/login_items.h"
#include "cli/model_run.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "core/checked.h"
#include "core/fmt.h"
#include "core/home.h"
#include "core/record_json.h"

namespace {

void printLeftovers(const QList<Leftover>& leftovers) {
    for (const Leftover& l : leftovers)
        Out::line(QStringLiteral("  %1 %2  %3 — %4")
                      .arg(title(l.confidence).leftJustified(9), Fmt::bytes(l.bytes).rightJustified(8),
                           Fmt::path(l.path), l.why));
}

void printApp(const InstalledApp& app) {
    // Rounded together, so that the two parts add up to the total shown.
    const auto [parts, total] = Fmt::parts({app.appBytes, app.leftoverBytes()});
    QString head = app.name + QStringLiteral(" — ") + total;
    if (app.leftoverBytes() > 0) head += QStringLiteral(" (app %1 + %2 left behind)").arg(parts[0], parts[1]);
    Out::line(head);
    Out::line(QStringLiteral("  ") + Fmt::path(app.path));
    const QString id = app.bundleID.isEmpty() ? QStringLiteral("no bundle identifier") : app.bundleID;
    const QString developer = app.developer.isEmpty() ? QStringLiteral("unknown") : app.developer;
    const QString used = app.lastUsed ? Fmt::ago(app.lastUsed, QDateTime::currentDateTimeUtc()) : QStringLiteral("unknown");
    Out::line(QStringLiteral("  %1 · developer %2 · last used %3").arg(id, developer, used));
    printLeftovers(app.leftovers);
}

void printLoginItem(const LoginItem& item) {
    Out::line(QStringLiteral("%1 (%2)").arg(item.name, item.identifier));
    QStringList facts{item.scope(), rawValue(item.kind),
                      item.enabled ? QStringLiteral("enabled") : QStringLiteral("disabled")};
    if (!item.developer.isEmpty()) facts.append(QStringLiteral("developer ") + item.developer);
    // On Linux the signer is the Debian package of the program.
    const bool noSigner = item.signer == LoginItems::notSigned || item.signer == LinuxLoginItems::notPackaged;
    facts.append(noSigner ? item.signer : QStringLiteral("package ") + item.signer);
    Out::line(QStringLiteral("  ") + facts.join(QStringLiteral(" · ")));
    Out::line(QStringLiteral("  ") + Fmt::path(item.path));
    if (item.missing) Out::line(QStringLiteral("  Its program no longer exists."));
    if (item.appStillThere) Out::line(QStringLiteral("  The app it belongs to is installed."));
}

}  // namespace

int runApps(const QStringList& args) {
    const auto json = Options::json(QStringLiteral("apps"), args);
    if (!json) return 2;
    Model model;
    ModelRun::loadApps(model);
    const QList<InstalledApp> apps = model.apps();
    if (*json) {
        Out::raw(encodeJsonList(apps).toText());
        return 0;
    }
    qint64 total = 0;
    for (const InstalledApp& app : apps) {
        printApp(app);
        Out::line();
        total = Checked::add(total, app.total());
    }
    if (apps.isEmpty())
        Out::line(QStringLiteral("No apps in %1 or %2, no Flatpak apps and no AppImages.")
                      .arg(SystemFolders::current().applications, Fmt::path(Home::at(QStringLiteral("Applications")))));
    else
        Out::line(QStringLiteral("%1, %2 in all.").arg(Fmt::count(apps.size(), QStringLiteral("app")), Fmt::bytes(total)));
    return 0;
}

int runOrphans(const QStringList& args) {
    if (args.contains(QStringLiteral("--remove"))) return runOrphanRemoval(args);
    const auto json = Options::json(QStringLiteral("orphans"), args);
    if (!json) return 2;
    Model model;
    ModelRun::loadApps(model);
    const QList<Orphan> orphans = model.orphans();
    if (*json) {
        Out::raw(encodeJsonList(orphans).toText());
        return 0;
    }
    qint64 total = 0;
    for (const Orphan& orphan : orphans) {
        Out::line(orphan.name + QStringLiteral(" — ") + Fmt::bytes(orphan.bytes()));
        printLeftovers(orphan.leftovers);
        Out::line();
        total = Checked::add(total, orphan.bytes());
    }
    if (orphans.isEmpty())
        Out::line(QStringLiteral("No leftovers of apps that are gone."));
    else
        Out::line(QStringLiteral("Leftovers of %1 that are gone, %2 in all.")
                      .arg(Fmt::count(orphans.size(), QStringLiteral("app")), Fmt::bytes(total)));
    return 0;
}

int runLoginItems(const QStringList& args) {
    const auto json = Options::json(QStringLiteral("login-items"), args);
    if (!json) return 2;
    Model model;
    ModelRun::loadLoginItems(model);
    const QList<LoginItem> items = model.loginItems();
    if (*json) {
        Out::raw(encodeJsonList(items).toText());
        return 0;
    }
    for (const LoginItem& item : items) {
        printLoginItem(item);
        Out::line();
    }
    Out::line(items.isEmpty() ? QStringLiteral("Nothing starts at login.")
                              : Fmt::count(items.size(), QStringLiteral("login item")) + QLatin1Char('.'));
    return 0;
}
