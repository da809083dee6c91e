#include "platform/running_apps.h"

#include <QStringList>
#include <chrono>
#include <mutex>
#include <optional>

#include "platform/shell.h"

namespace {

// `flatpak ps` answers at once; a hung one must not hold up a removal for long.
constexpr double flatpakTimeout = 5.0;
constexpr std::chrono::seconds freshFor{2};

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
    // A removal of many container items asks once per item; one answer serves them for a moment.
    static std::mutex lock;
    static QSet<QString> last;
    static std::optional<std::chrono::steady_clock::time_point> asked;
    std::lock_guard guard(lock);
    const auto now = std::chrono::steady_clock::now();
    if (asked && now - *asked < freshFor) return last;
    const auto out = Shell::run({QStringLiteral("flatpak"), QStringLiteral("ps"), QStringLiteral("--columns=application")},
                                flatpakTimeout);
    last = out ? parseFlatpakPs(*out) : QSet<QString>();
    asked = std::chrono::steady_clock::now();
    return last;
}

}  // namespace RunningApps
