#include "removal/refusal.h"

#include "core/fmt.h"

QString Refusal::description() const {
    const QString shown = Fmt::path(path);
    switch (kind) {
        case Kind::outside: return QStringLiteral("Outside the folders Quarle cleans: ") + shown;
        case Kind::protected_: return QStringLiteral("Protected: ") + shown;
        case Kind::missing: return QStringLiteral("No longer there: ") + shown;
        case Kind::symlinkParent: return QStringLiteral("Reached through a link: ") + shown;
        case Kind::inUse: return QStringLiteral("In use by an app that's open: ") + shown;
        case Kind::empty: return QStringLiteral("An empty path names nothing (is a variable unset?)");
        case Kind::tooDeep: return QStringLiteral("Too deep for the system to reach by its path: ") + shown;
        case Kind::inTrash: return QStringLiteral("Already in the Trash: ") + shown;
    }
    return shown;
}
