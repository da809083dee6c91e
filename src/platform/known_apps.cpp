#include "platform/known_apps.h"

#include <sys/stat.h>

#include <memory>
#include <optional>

#include "core/home.h"
#include "core/paths.h"
#include "platform/shell.h"

namespace {

// Listing the installed Flatpaks reads local metadata only; this is ample.
constexpr double flatpakSeconds = 10.0;

QString absoluteEnv(const char* name) {
    const QString value = Paths::fromBytes(qgetenv(name));
    return value.startsWith(QLatin1Char('/')) ? value : QString();
}

}  // namespace

namespace KnownApps {

QStringList applicationFolders() {
    QString dataHome = absoluteEnv("XDG_DATA_HOME");
    if (dataHome.isEmpty()) dataHome = Home::accountHome() + QStringLiteral("/.local/share");
    QStringList folders{dataHome + QStringLiteral("/applications")};
    QString dirs = Paths::fromBytes(qgetenv("XDG_DATA_DIRS"));
    if (dirs.isEmpty()) dirs = QStringLiteral("/usr/local/share:/usr/share");
    for (const QString& dir : dirs.split(QLatin1Char(':'), Qt::SkipEmptyParts))
        if (dir.startsWith(QLatin1Char('/'))) folders.append(dir + QStringLiteral("/applications"));
    return folders;
}

bool hasDesktopEntry(const QString& id, const QStringList& folders) {
    if (id.isEmpty() || id.contains(QLatin1Char('/'))) return false;
    for (const QString& folder : folders) {
        struct stat st;
        const QByteArray path = Paths::toBytes(folder + QLatin1Char('/') + id + QStringLiteral(".desktop"));
        if (::stat(path.constData(), &st) == 0 && S_ISREG(st.st_mode)) return true;
    }
    return false;
}

QSet<QString> installedFlatpaks() {
    const auto out = Shell::run({QStringLiteral("flatpak"), QStringLiteral("list"), QStringLiteral("--app"),
                                 QStringLiteral("--columns=application")},
                                flatpakSeconds);
    QSet<QString> ids;
    if (!out) return ids;
    for (const QString& line : out->split(QLatin1Char('\n'))) {
        const QString id = line.trimmed();
        if (!id.isEmpty()) ids.insert(id);
    }
    return ids;
}

std::function<bool(const QString&)> lookup() {
    auto flatpaks = std::make_shared<std::optional<QSet<QString>>>();
    return [folders = applicationFolders(), flatpaks](const QString& id) {
        if (hasDesktopEntry(id, folders)) return true;
        if (!*flatpaks) *flatpaks = installedFlatpaks();
        return (*flatpaks)->contains(id);
    };
}

}  // namespace KnownApps
