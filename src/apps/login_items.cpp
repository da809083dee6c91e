#include "apps/login_items.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <optional>

#include "apps/app_scanner.h"
#include "apps/leftovers.h"
#include "apps/linux_login_items.h"
#include "apps/property_list.h"
#include "core/home.h"
#include "core/paths.h"
#include "measure/walker.h"
#include "platform/known_apps.h"
#include "platform/shell.h"

namespace {

constexpr double launchctlSeconds = 5.0;

// launchd runs a program named without a folder from this search path.
const QStringList launchdPath{QStringLiteral("/usr/bin"), QStringLiteral("/bin"), QStringLiteral("/usr/sbin"),
                              QStringLiteral("/sbin")};

bool exists(const QString& path) {
    struct stat st;
    return ::stat(Paths::toBytes(path).constData(), &st) == 0;
}

bool programExists(const QString& program) {
    if (program.contains(QLatin1Char('/'))) return exists(program);
    return std::any_of(launchdPath.begin(), launchdPath.end(),
                       [&](const QString& dir) { return exists(dir + QLatin1Char('/') + program); });
}

// What every item is judged against, gathered once per listing.
struct Context {
    QList<AppScanner::Bundle> apps;
    std::function<bool(const QString&)> platformKnows;
    QHash<QString, bool> disabled;

    const AppScanner::Bundle* app(const std::function<bool(const AppScanner::Bundle&)>& is) const {
        const auto it = std::find_if(apps.begin(), apps.end(), is);
        return it == apps.end() ? nullptr : &*it;
    }
};

// The program a job runs: "BundleProgram" inside its app, else "Program", else the first of
// "ProgramArguments" (launchd runs "Program" when both are given). Nothing when the job names
// none, as one that only offers "MachServices"; an empty text when it lived in an app that is gone.
std::optional<QString> programOf(const QVariantMap& job, const AppScanner::Bundle* app) {
    if (const auto inApp = PropertyList::text(job, QStringLiteral("BundleProgram"))) {
        if (app) return app->path + QLatin1Char('/') + *inApp;
    }
    if (const auto program = PropertyList::text(job, QStringLiteral("Program")); program && !program->isEmpty())
        return program;
    const QVariantList args = job.value(QStringLiteral("ProgramArguments")).toList();
    if (!args.isEmpty() && args[0].typeId() == QMetaType::QString && !args[0].toString().isEmpty())
        return args[0].toString();
    if (job.contains(QStringLiteral("BundleProgram"))) return QString();
    return std::nullopt;
}

std::optional<LoginItem> readItem(const QString& path, LoginItem::Kind kind, bool needsAdmin, const Context& c) {
    const auto job = PropertyList::read(path);
    if (!job) return std::nullopt;
    const QString label = PropertyList::text(*job, QStringLiteral("Label")).value_or(QString());
    if (label.isEmpty()) return std::nullopt;

    const QStringList owners = PropertyList::texts(*job, QStringLiteral("AssociatedBundleIdentifiers"));
    const AppScanner::Bundle* app =
        c.app([&](const AppScanner::Bundle& b) { return !b.bundleID.isEmpty() && owners.contains(b.bundleID); });
    const std::optional<QString> program = programOf(*job, app);
    if (!app && program) {
        // A program inside an installed bundle belongs to that app even when the job does not say so.
        const qsizetype end = program->indexOf(QStringLiteral(".app/"));
        if (end > 0) {
            const QString bundle = program->left(end + 4);
            app = c.app([&](const AppScanner::Bundle& b) { return b.path == bundle; });
        }
    }

    LoginItem item;
    item.name = app ? app->name : label;
    item.identifier = label;
    item.developer = app ? AppScanner::developer(*app) : Leftovers::vendor(label).value_or(QString());
    item.kind = kind;
    const bool disabledByDefault = job->value(QStringLiteral("Disabled")).toBool();
    item.enabled = !c.disabled.value(label, disabledByDefault);
    item.path = path;
    item.needsAdmin = needsAdmin;
    item.signer = LoginItems::notSigned;
    item.missing = program && (program->isEmpty() || !programExists(*program));
    item.appStillThere = app || std::any_of(owners.begin(), owners.end(), c.platformKnows);
    return item;
}

}  // namespace

namespace LoginItems {

QHash<QString, bool> parseDisabled(const QString& output) {
    QHash<QString, bool> out;
    bool inBlock = false;
    for (const QString& raw : output.split(QLatin1Char('\n'))) {
        const QString line = raw.trimmed();
        if (!inBlock) {
            inBlock = line.startsWith(QLatin1String("disabled services")) && line.endsWith(QLatin1Char('{'));
            continue;
        }
        if (line == QLatin1String("}")) {
            inBlock = false;
            continue;
        }
        const qsizetype open = line.indexOf(QLatin1Char('"'));
        const qsizetype close = line.lastIndexOf(QLatin1Char('"'));
        if (open < 0 || close <= open) continue;
        const QString label = line.mid(open + 1, close - open - 1);
        if (line.endsWith(QLatin1String("=> disabled")) || line.endsWith(QLatin1String("=> true")))
            out.insert(label, true);
        else if (line.endsWith(QLatin1String("=> enabled")) || line.endsWith(QLatin1String("=> false")))
            out.insert(label, false);
    }
    return out;
}

QHash<QString, bool> disabledLabels(const QString& launchctl) {
    const auto out = Shell::run({launchctl, QStringLiteral("print-disabled"),
                                 QStringLiteral("gui/") + QString::number(::getuid())},
                                launchctlSeconds);
    return out ? parseDisabled(*out) : QHash<QString, bool>();
}

QList<LoginItem> list(const SystemFolders& folders) {
    const Context context{AppScanner::bundles(folders), KnownApps::lookup(), disabledLabels(folders.launchctl)};
    struct Folder {
        QString path;
        LoginItem::Kind kind;
        bool needsAdmin;
    };
    const Folder searched[] = {{Home::at(QStringLiteral("Library/LaunchAgents")), LoginItem::Kind::agent, false},
                               {folders.launchAgents, LoginItem::Kind::agent, true},
                               {folders.launchDaemons, LoginItem::Kind::daemon, true}};
    QList<LoginItem> items;
    for (const Folder& f : searched) {
        Walker::list(f.path, std::nullopt, [&](const Walker::Entry& e) {
            // Links are followed: a link to a job's property list is how some tools install one.
            if (e.isDir || !e.name.endsWith(QLatin1String(".plist"))) return;
            if (auto item = readItem(f.path + QLatin1Char('/') + e.name, f.kind, f.needsAdmin, context))
                items.append(std::move(*item));
        });
    }
    items += LinuxLoginItems::list(folders);
    std::sort(items.begin(), items.end(), [](const LoginItem& a, const LoginItem& b) {
        if (a.needsAdmin != b.needsAdmin) return !a.needsAdmin;
        if (const int byName = a.name.compare(b.name, Qt::CaseInsensitive)) return byName < 0;
        if (a.identifier != b.identifier) return a.identifier < b.identifier;
        return a.path < b.path;
    });
    return items;
}

}  // namespace LoginItems
