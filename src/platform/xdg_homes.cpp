#include "platform/xdg_homes.h"

#include "core/home.h"
#include "core/paths.h"

namespace {

QString folder(const char* variable, const QString& fallback) {
    if (!Home::isFake()) {
        const QString value = Paths::fromBytes(qgetenv(variable));
        if (value.startsWith(QLatin1Char('/'))) return Paths::standardize(value, QString());
    }
    return Home::at(fallback);
}

}  // namespace

namespace XdgHomes {

QString config() { return folder("XDG_CONFIG_HOME", QStringLiteral(".config")); }

QString data() { return Home::dataFolder(); }

QString cache() { return folder("XDG_CACHE_HOME", QStringLiteral(".cache")); }

}  // namespace XdgHomes
