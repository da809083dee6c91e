#include "platform/running_apps.h"

#include <QStringList>

#include "platform/shell.h"

namespace {

// `flatpak ps` answers at once; a hung one must not hold up a removal for long.
constexpr double flatpakTimeout = 5.0;

// An application id has at least two dot-separated parts and no spaces ("org.gnome.Maps").
bool looksLikeAppId(const QString& s) {
    return s.contains(QLatin1Char('.')) && !s.contains(QLatin1Char(' ')) && !s.startsWith(QLatin1Char('.')) &&
           !s.endsWith(QLatin1Char('.'));
}

}  // namespace

namespace RunningApps {

QSet<QString> parseFlatpakPs(const QString& output) {
    QSet<QString> ids;
    for (const QString& line : output.split(QLatin1Char('\n'))) {
        const QString id = line.trimmed();
        if (looksLikeAppId(id)) ids.insert(id);
    }
    return ids;
}

QSet<QString> ids() {
    const auto out = Shell::run({QStringLiteral("flatpak"), QStringLiteral("ps"), QStringLiteral("--columns=application")},
                                flatpakTimeout);
    return out ? parseFlatpakPs(*out) : QSet<QString>();
}

}  // namespace RunningApps
