#include "apps/linux_app.h"

#include <algorithm>

#include "apps/app_images.h"
#include "apps/flatpak_apps.h"
#include "core/paths.h"

namespace {

// Programs that start other programs: their names say nothing of the app.
const QStringList genericPrograms{
    QStringLiteral("apprun"), QStringLiteral("bash"),     QStringLiteral("electron"), QStringLiteral("env"),
    QStringLiteral("flatpak"), QStringLiteral("java"),    QStringLiteral("launcher"), QStringLiteral("node"),
    QStringLiteral("python"), QStringLiteral("python3"),  QStringLiteral("run"),      QStringLiteral("sh"),
    QStringLiteral("start"),  QStringLiteral("wine"),     QStringLiteral("wrapper")};

bool isElementCharacter(QChar c) {
    return (c >= QLatin1Char('a') && c <= QLatin1Char('z')) || (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) ||
           (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('_') || c == QLatin1Char('-');
}

}  // namespace

namespace LinuxApps {

bool isAppID(const QString& id) {
    if (id.size() > 255) return false;
    const QStringList elements = id.split(QLatin1Char('.'));
    if (elements.size() < 3) return false;
    for (const QString& e : elements) {
        if (e.isEmpty() || e[0].isDigit()) return false;
        if (!std::all_of(e.cbegin(), e.cend(), isElementCharacter)) return false;
    }
    return true;
}

std::optional<Leftovers::OtherName> programName(const QString& program) {
    const QString name = Paths::lastComponent(program);
    if (name.isEmpty() || genericPrograms.contains(name.toLower())) return std::nullopt;
    return Leftovers::OtherName{name, QStringLiteral("Named after its program (%1)").arg(name)};
}

std::optional<Leftovers::OtherName> windowClass(const QString& wmClass) {
    if (wmClass.isEmpty()) return std::nullopt;
    return Leftovers::OtherName{wmClass, QStringLiteral("Named after its window class (%1)").arg(wmClass)};
}

QString vendorOf(const QString& id) { return Leftovers::vendor(id).value_or(QString()); }

QList<LinuxApp> list(const SystemFolders& folders) { return FlatpakApps::list(folders) + AppImages::list(); }

}  // namespace LinuxApps
