#include "core/home.h"

#include <pwd.h>
#include <unistd.h>

#include <QDir>
#include <optional>

#include "core/paths.h"

namespace {

std::optional<QString> processEnv(const char* name) {
    const char* value = ::getenv(name);
    if (!value) return std::nullopt;
    return Paths::fromBytes(QByteArray(value));
}

}  // namespace

namespace Home {

QString decide(const std::function<std::optional<QString>(const char*)>& env,
               const QString& accountHome, const QString& currentDir) {
    if (const auto root = env("QUARLE_ROOT"); root && !root->isEmpty()) {
        QString p = Paths::standardize(*root, accountHome);
        if (!p.startsWith(QLatin1Char('/'))) p = Paths::standardize(currentDir + QLatin1Char('/') + p, accountHome);
        return p;
    }
    if (env("QUARLE_DEMO")) return demoPath;
    return accountHome;
}

QString accountHome() {
    if (const auto home = processEnv("HOME"); home && home->startsWith(QLatin1Char('/')))
        return Paths::standardize(*home, QString());
    if (const passwd* pw = ::getpwuid(::getuid()); pw && pw->pw_dir)
        return Paths::standardize(Paths::fromBytes(QByteArray(pw->pw_dir)), QString());
    return QStringLiteral("/");
}

const QString& path() {
    static const QString decided = decide(processEnv, accountHome(), QDir::currentPath());
    return decided;
}

bool isFake() { return path() != accountHome(); }

QString at(const QString& relative) { return path() + QLatin1Char('/') + relative; }

QString dataFolder() {
    if (!isFake()) {
        const auto xdg = processEnv("XDG_DATA_HOME");
        if (xdg && xdg->startsWith(QLatin1Char('/'))) return Paths::standardize(*xdg, QString());
    }
    return at(QStringLiteral(".local/share"));
}

QString trashFolder() { return dataFolder() + QStringLiteral("/Trash"); }

}  // namespace Home
