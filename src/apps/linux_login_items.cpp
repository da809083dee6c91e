#include "apps/linux_login_items.h"

#include <algorithm>

#include "apps/autostart.h"
#include "apps/flatpak_apps.h"
#include "apps/user_units.h"
#include "core/home.h"
#include "core/paths.h"
#include "platform/command_line.h"
#include "platform/debian_packages.h"

namespace {

// A program whose place we can tell: an absolute path or a bare name, without a specifier.
bool judgeable(const QString& program) {
    return !program.isEmpty() && !program.contains(QLatin1Char('%')) &&
           (program.startsWith(QLatin1Char('/')) || !program.contains(QLatin1Char('/')));
}

// The owning app among the installed ones: by the id its files name, else by its program's path.
const LinuxApp* owningApp(const QString& id, const QString& program, const QList<LinuxApp>& apps) {
    for (const LinuxApp& a : apps) {
        if (!id.isEmpty() ? a.id == id
                          : (a.origin == LinuxApp::Origin::appImage ? program == a.path
                                                                    : Paths::isWithin(program, a.path)))
            return &a;
    }
    return nullptr;
}

}  // namespace

namespace LinuxLoginItems {

QString flatpakRunID(const QStringList& command) {
    if (command.isEmpty() || Paths::lastComponent(command[0]) != QLatin1String("flatpak")) return {};
    const qsizetype run = command.indexOf(QStringLiteral("run"));
    if (run < 0) return {};
    for (qsizetype i = run + 1; i < command.size(); ++i)
        if (!command[i].startsWith(QLatin1Char('-'))) return command[i].section(QStringLiteral("//"), 0, 0);
    return {};
}

QList<Draft> drafts(const SystemFolders& folders) {
    QList<Draft> out;
    for (const Autostart::Found& f : Autostart::list(folders)) {
        Draft d;
        d.item.name = f.name();
        d.item.identifier = f.entry.id;
        d.item.kind = LoginItem::Kind::loginItem;
        d.item.enabled = f.enabled();
        d.item.path = f.entry.path;
        d.item.needsAdmin = f.needsAdmin;
        d.command = f.exec();
        d.tryExec = f.tryExec();
        d.flatpak = f.flatpak();
        out.append(d);
    }
    // The service manager runs no user units for a fixture home: ask it only about the account's own.
    const auto systemctl = Home::isFake() ? std::nullopt : std::optional(folders.systemctl);
    for (const UserUnits::Unit& u : UserUnits::list(folders, systemctl)) {
        Draft d;
        d.item.name = u.description;
        d.item.identifier = u.name;
        d.item.kind = LoginItem::Kind::agent;
        d.item.enabled = u.enabled;
        d.item.path = u.path;
        d.item.needsAdmin = u.needsAdmin;
        d.command = u.command;
        out.append(d);
    }
    return out;
}

QList<LoginItem> judge(const QList<Draft>& drafts, const Context& context) {
    // Where each judged program is, found once; then one question to dpkg for all of them.
    QHash<QString, std::optional<QString>> located;
    const auto locate = [&](const QString& program) -> std::optional<QString> {
        if (!judgeable(program)) return std::nullopt;
        auto it = located.find(program);
        if (it == located.end()) it = located.insert(program, CommandLine::locate(program, context.searchPath));
        return *it;
    };
    QStringList programs;
    for (const Draft& d : drafts)
        if (const auto path = locate(CommandLine::program(d.command)); path && !programs.contains(*path))
            programs.append(*path);
    const QHash<QString, QString> packages = programs.isEmpty() ? QHash<QString, QString>() : context.packages(programs);

    QList<LoginItem> out;
    for (const Draft& d : drafts) {
        LoginItem item = d.item;
        const QString program = CommandLine::program(d.command);
        const std::optional<QString> path = locate(program);
        const QString ownerID = !d.flatpak.isEmpty() ? d.flatpak : flatpakRunID(d.command);
        const LinuxApp* app = owningApp(ownerID, path.value_or(program), context.apps);

        if (app) item.name = app->name;
        if (item.name.isEmpty()) item.name = item.identifier;
        if (app) {
            item.developer = app->developer;
        } else {
            // An entry named like an app id ("org.gnome.Evolution-alarm-notify") carries its maker.
            QString id = item.identifier;
            if (id.endsWith(QLatin1String(".service"))) id.chop(8);
            item.developer = LinuxApps::isAppID(id) ? LinuxApps::vendorOf(id) : QString();
        }
        const QString package = path ? packages.value(*path) : QString();
        item.signer = package.isEmpty() ? notPackaged : package;
        item.missing = (judgeable(program) && !path) || (judgeable(d.tryExec) && !locate(d.tryExec));
        if (app) item.appStillThere = true;
        else if (!ownerID.isEmpty()) item.appStillThere = context.installed(ownerID);
        else item.appStillThere = !package.isEmpty();
        out.append(item);
    }
    return out;
}

QList<LoginItem> list(const SystemFolders& folders) {
    Context context;
    context.apps = LinuxApps::list(folders);
    context.installed = FlatpakApps::stillInstalled(folders);
    context.packages = [](const QStringList& paths) { return DebianPackages::owners(paths); };
    context.searchPath = CommandLine::searchPath();
    return judge(drafts(folders), context);
}

}  // namespace LinuxLoginItems
