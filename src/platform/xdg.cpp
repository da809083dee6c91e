#include "platform/xdg.h"

#include "core/home.h"
#include "core/paths.h"

namespace Xdg {

QString folder(const char* variable, const QString& fallback) {
    if (!Home::isFake()) {
        const QString value = Paths::fromBytes(qgetenv(variable));
        if (value.startsWith(QLatin1Char('/'))) return Paths::standardize(value, QString());
    }
    return Home::at(fallback);
}

QString cacheHome() { return folder("XDG_CACHE_HOME", QStringLiteral(".cache")); }

QString configHome() { return folder("XDG_CONFIG_HOME", QStringLiteral(".config")); }

QString dataHome() { return Home::dataFolder(); }

}  // namespace Xdg
