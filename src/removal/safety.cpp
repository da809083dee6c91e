#include "removal/safety.h"

#include <errno.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <QRegularExpression>
#include <QStringList>
#include <utility>

#include "core/paths.h"
#include "measure/walker.h"
#include "platform/running_apps.h"
#include "platform/user_dirs.h"
#include "platform/xdg.h"

namespace {

const QStringList systemRoots{
    QStringLiteral("/"), QStringLiteral("/Applications"), QStringLiteral("/Users"), QStringLiteral("/System"),
    QStringLiteral("/Library"),
};

// Folders under home that may never be removed themselves.
const QStringList rootNames{
    QStringLiteral("Library"), QStringLiteral("Documents"), QStringLiteral("Desktop"),
    QStringLiteral("Downloads"), QStringLiteral("Pictures"), QStringLiteral("Movies"),
    QStringLiteral("Music"), QStringLiteral("Public"), QStringLiteral("Applications"),
    QStringLiteral("Library/Caches"), QStringLiteral("Library/Logs"),
    QStringLiteral("Library/Application Support"), QStringLiteral("Library/Containers"),
    QStringLiteral("Library/Group Containers"), QStringLiteral("Library/Preferences"),
    QStringLiteral("Library/Developer"), QStringLiteral("Library/Developer/Xcode"), QStringLiteral(".Trash"),
    // A Linux home's base folders and its Trash.
    QStringLiteral(".cache"), QStringLiteral(".config"), QStringLiteral(".local"), QStringLiteral(".local/share"),
    QStringLiteral(".local/state"), QStringLiteral(".var"), QStringLiteral(".var/app"),
    QStringLiteral(".local/share/Trash"), QStringLiteral(".local/share/Trash/files"), QStringLiteral(".local/share/Trash/info"),
};

// Folders whose parents hold protected data, as suffixes of the home folder.
const QStringList anchors{
    QStringLiteral("/Pictures/Photos Library.photoslibrary"), QStringLiteral("/Library/Mail"),
    QStringLiteral("/Library/Messages"), QStringLiteral("/Library/Safari"), QStringLiteral("/Library/Keychains"),
    QStringLiteral("/Library/Mobile Documents"), QStringLiteral("/Library/CloudStorage"),
    QStringLiteral("/Library/Calendars"), QStringLiteral("/Library/Application Support/AddressBook"),
};

// Below these (relative to home) a folder is not searched in depth: they are caches and build
// output, big and never the home of protected libraries.
const QStringList shallowPrefixes{
    QStringLiteral("Library/Caches/"), QStringLiteral("Library/Logs/"), QStringLiteral("Library/Developer/"),
    QStringLiteral("Library/Containers/com.docker.docker/"),
};

// Known caches and build output (relative to home, besides shallowPrefixes): too big to look
// through is no reason to keep them.
bool knownCache(const QString& relative) {
    static const QRegularExpression flatpakCache(QStringLiteral("^\\.var/app/[^/]+/cache(/|$)"));
    for (const QString& prefix : shallowPrefixes)
        if (relative.startsWith(prefix)) return true;
    return relative.startsWith(QLatin1String(".cache/")) || relative.endsWith(QLatin1String("/node_modules")) ||
           relative.contains(QLatin1String("/node_modules/")) || flatpakCache.match(relative).hasMatch();
}

// The home Trash stands in for ~/.Trash: the folder itself and its two halves stay.
QSet<QString> trashRoots() {
    const QString trash = Safety::realPath(Home::trashFolder()).value_or(Home::trashFolder());
    return {trash, trash + QStringLiteral("/files"), trash + QStringLiteral("/info")};
}

// The desktop's user folders (Pictures, Documents, … under the names user-dirs.dirs gives them, such
// as "Bilder" on a German desktop) are roots as much as the English names are. Resolved, inside the home.
QSet<QString> userFolders(const QString& home, const QString& realHome) {
    QSet<QString> folders;
    const QString configured = Xdg::configHome() + QStringLiteral("/user-dirs.dirs");
    for (const QString& folder : UserDirs::read(home, configured)) {
        const QString real = Safety::realPath(folder).value_or(folder);
        if (real.startsWith(realHome + QLatin1Char('/'))) folders.insert(real);
    }
    return folders;
}

// roots(home).contains(real) for a resolved home, resolving the Trash folder only for a path that
// may be one of it.
bool isRoot(const QString& real, const QString& home, const QSet<QString>& userFolders) {
    static const QSet<QString> trashNames{QStringLiteral("Trash"), QStringLiteral("files"), QStringLiteral("info")};
    if (trashNames.contains(Paths::lastComponent(real)) && trashRoots().contains(real)) return true;
    return real == home || systemRoots.contains(real) || userFolders.contains(real) ||
           (real.startsWith(home + QLatin1Char('/')) && rootNames.contains(real.mid(home.size() + 1)));
}

QString extensionOf(const QString& name) {
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot > 0 ? name.mid(dot + 1) : QString();
}

bool protectedExtension(const QString& name) {
    const QString ext = extensionOf(name);
    return !ext.isEmpty() && Safety::protectedExtensions().contains(ext.toLower());
}


// The Flatpak app id when `relative` lies inside its folder ~/.var/app/<id>.
std::optional<QString> flatpakApp(const QStringList& parts) {
    if (parts.size() > 2 && parts[0] == QLatin1String(".var") && parts[1] == QLatin1String("app")) return parts[2];
    return std::nullopt;
}

// The container name when `relative` lies inside ~/Library/Containers or ~/Library/Group Containers.
std::optional<QString> containerName(const QStringList& parts) {
    if (parts.size() > 2 && parts[0] == QLatin1String("Library") &&
        (parts[1] == QLatin1String("Containers") || parts[1] == QLatin1String("Group Containers")))
        return parts[2];
    return std::nullopt;
}

bool runningOwns(const QString& container, const QSet<QString>& running) {
    for (const QString& id : running)
        if (container == id || container.endsWith(QLatin1Char('.') + id)) return true;
    return false;
}

}  // namespace

namespace Safety {

const QSet<QString>& protectedNames() {
    static const QSet<QString> names{
        QStringLiteral("Mobile Documents"), QStringLiteral("CloudStorage"), QStringLiteral("Keychains"),
        QStringLiteral("com.apple.TCC"), QStringLiteral("Photos Library.photoslibrary"), QStringLiteral("Mail"),
        QStringLiteral("Messages"), QStringLiteral("Accounts"), QStringLiteral("Cookies"),
        QStringLiteral("PersonalizationPortrait"), QStringLiteral("Biome"),
        // Keys, passwords and the keyrings that hold them on a Linux home.
        QStringLiteral(".ssh"), QStringLiteral(".gnupg"), QStringLiteral("keyrings"), QStringLiteral(".password-store"),
    };
    return names;
}

const QSet<QString>& libraryNames() {
    static const QSet<QString> names{
        QStringLiteral("Safari"), QStringLiteral("Calendars"), QStringLiteral("AddressBook"), QStringLiteral("Notes"),
        QStringLiteral("Reminders"), QStringLiteral("IdentityServices"), QStringLiteral("HomeKit"),
    };
    return names;
}

const QSet<QString>& protectedExtensions() {
    static const QSet<QString> extensions{
        QStringLiteral("photoslibrary"), QStringLiteral("photolibrary"), QStringLiteral("aplibrary"),
        QStringLiteral("musiclibrary"), QStringLiteral("tvlibrary"), QStringLiteral("migratedphotolibrary"),
    };
    return extensions;
}

QSet<QString> runningOnPlatform() { return RunningApps::ids(); }

bool inTrash(const QString& real) {
    // Anything in a Trash has its record next to it: moving or erasing it by hand orphans one.
    const QString trash = realPath(Home::trashFolder()).value_or(Home::trashFolder());
    if (real != trash && Paths::isWithin(real, trash)) return true;
    static const QRegularExpression topTrash(QStringLiteral("/(\\.Trash-\\d+|\\.Trash/\\d+)/."));
    return topTrash.match(real).hasMatch();
}

std::optional<QString> realPath(const QString& path) {
    char* resolved = ::realpath(Paths::toBytes(path).constData(), nullptr);
    if (!resolved) return std::nullopt;
    QString out = Paths::fromBytes(QByteArray(resolved));
    ::free(resolved);
    return out;
}

QSet<QString> roots(const QString& home) {
    QSet<QString> all{home};
    for (const QString& root : systemRoots) all.insert(root);
    for (const QString& name : rootNames) all.insert(home + QLatin1Char('/') + name);
    all.unite(trashRoots());
    all.unite(userFolders(home, realPath(home).value_or(home)));
    return all;
}

bool appleContainer(const QString& relative) {
    const QStringList parts = relative.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const auto name = containerName(parts);
    if (!name) return false;
    const QString lower = name->toLower();
    return lower.startsWith(QLatin1String("com.apple.")) || lower.startsWith(QLatin1String("group.com.apple.")) ||
           lower.contains(QLatin1String(".com.apple."));
}

bool holdsProtected(const QString& path, const QString& home, bool look, bool cache, int limit) {
    const QString asParent = path + QLatin1Char('/');
    for (const QString& anchor : anchors)
        if ((home + anchor).startsWith(asParent)) return true;
    if (!look) return false;
    struct stat st;
    if (::lstat(Paths::toBytes(path).constData(), &st) != 0 || !S_ISDIR(st.st_mode)) return false;

    QStringList stack{path};
    int seen = 0;
    while (!stack.isEmpty()) {
        const QString folder = stack.takeLast();
        bool found = false;
        Walker::list(folder, std::nullopt, [&](const Walker::Entry& e) {
            ++seen;
            if (protectedNames().contains(e.name) || protectedExtension(e.name)) found = true;
            if (e.isDir) stack.append(folder + QLatin1Char('/') + e.name);
        });
        if (found) return true;
        if (seen > limit) return !cache;
    }
    return false;
}

Checker::Checker(const QString& home, RunningSource running)
    : home_(home), realHome_(realPath(home).value_or(home)), userFolders_(userFolders(home, realHome_)),
      running_(std::move(running)) {}

Verdict check(const QString& path, const QString& home, const QSet<QString>& apps, const RunningSource& running) {
    return Checker(home, running).check(path, apps);
}

Verdict Checker::check(const QString& path, const QSet<QString>& apps) const {
    const QString& home = home_;
    const QString& realHome = realHome_;
    if (path.isEmpty()) return Verdict{QString(), Refusal{Refusal::Kind::empty, QString()}};
    // "~" is the home; a ".." means what it means to the kernel (after a link, the target's parent).
    const QString expanded = path == QLatin1String("~")          ? home
                             : path.startsWith(QLatin1String("~/")) ? home + path.mid(1)
                                                                     : path;
    const bool absolute = expanded.startsWith(QLatin1Char('/'));
    const std::optional<QString> kernel = absolute ? Paths::resolveDotDot(expanded) : std::nullopt;
    QString given = kernel.value_or(Paths::standardize(expanded, home));
    const auto refuse = [&](Refusal::Kind kind) { return Verdict{QString(), Refusal{kind, given}}; };
    if (!absolute) return refuse(Refusal::Kind::outside);  // no place of its own
    if (!kernel) {
        given = expanded;
        return refuse(Refusal::Kind::missing);
    }

    struct stat st;
    const auto missingOrTooDeep = [&] {
        return refuse(errno == ENAMETOOLONG ? Refusal::Kind::tooDeep : Refusal::Kind::missing);
    };
    if (::lstat(Paths::toBytes(given).constData(), &st) != 0) return missingOrTooDeep();
    const QString parent = Paths::parentOf(given);
    const auto resolvedParent = realPath(parent);
    if (!resolvedParent) return missingOrTooDeep();

    // Link test: only the home folder itself may lie behind a link.
    const QString expectedParent =
        Paths::isWithin(parent, home) ? realHome + parent.mid(home.size()) : parent;
    if (*resolvedParent != expectedParent && *resolvedParent != parent) return refuse(Refusal::Kind::symlinkParent);

    // The last component is never followed: a link is removed as the link.
    const QString last = Paths::lastComponent(given);
    const QString real = *resolvedParent == QLatin1String("/") ? QLatin1Char('/') + last
                                                                : *resolvedParent + QLatin1Char('/') + last;
    const bool underHome = real.startsWith(realHome + QLatin1Char('/'));
    if (real == realHome) return refuse(Refusal::Kind::protected_);

    // Place test: outside home only an app being uninstalled, straight inside /Applications.
    const bool appTarget = (apps.contains(given) || apps.contains(real)) &&
                           real.startsWith(QLatin1String("/Applications/")) && real.endsWith(QLatin1String(".app"));
    if (appTarget) {
        if (!underHome && real.split(QLatin1Char('/'), Qt::SkipEmptyParts).size() != 2)
            return refuse(Refusal::Kind::outside);
    } else if (!underHome) {
        return refuse(Refusal::Kind::outside);
    }

    if (isRoot(real, realHome, userFolders_)) return refuse(Refusal::Kind::protected_);
    if (inTrash(real)) return refuse(Refusal::Kind::inTrash);

    const QString relative = underHome ? real.mid(realHome.size() + 1) : real;
    const bool inLibrary = underHome && relative.startsWith(QLatin1String("Library/"));
    const QStringList parts = relative.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        if (protectedNames().contains(part) || (inLibrary && libraryNames().contains(part)) ||
            protectedExtension(part))
            return refuse(Refusal::Kind::protected_);
    }
    if (!underHome) return Verdict{real, std::nullopt};  // an app being uninstalled

    if (appleContainer(relative)) return refuse(Refusal::Kind::protected_);
    const auto running = [&] { return running_ ? running_() : QSet<QString>(); };
    if (const auto container = containerName(parts); container && runningOwns(*container, running()))
        return refuse(Refusal::Kind::inUse);
    // A running Flatpak app reads and writes its data, settings and cache under its folder.
    if (const auto app = flatpakApp(parts); app && running().contains(*app)) return refuse(Refusal::Kind::inUse);

    if (holdsProtected(real, realHome, true, knownCache(relative))) return refuse(Refusal::Kind::protected_);
    return Verdict{real, std::nullopt};
}

}  // namespace Safety
