#include "removal/trash_dirs.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QFile>

#include "core/home.h"
#include "core/paths.h"
#include "platform/system_figures.h"

namespace {

constexpr int dirFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// A Trash folder must be a real folder of this user that nobody else may change.
bool trustworthy(int fd) {
    struct stat st;
    return fd >= 0 && ::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode) && st.st_uid == ::geteuid() &&
           (st.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

UniqueFd openPart(int parent, const char* name, bool create) {
    UniqueFd fd(::openat(parent, name, dirFlags));
    if (!fd && errno == ENOENT && create) {
        ::mkdirat(parent, name, 0700);
        fd = UniqueFd(::openat(parent, name, dirFlags));
    }
    return trustworthy(fd.get()) ? std::move(fd) : UniqueFd();
}

// Opens the Trash at `root` (which must not be a link) with its two halves.
std::optional<TrashCan> openCan(int rootFd, const QString& root, const QString& topdir, bool create) {
    if (!trustworthy(rootFd)) return std::nullopt;
    TrashCan can;
    can.root = root;
    can.topdir = topdir;
    can.files = openPart(rootFd, "files", create);
    can.info = openPart(rootFd, "info", create);
    struct stat st;
    if (!can.files || !can.info || ::fstat(can.files.get(), &st) != 0) return std::nullopt;
    can.device = st.st_dev;
    return can;
}

// $topdir/.Trash when it may hold per-user Trash folders: a real folder with the sticky bit.
UniqueFd sharedTrash(const QString& topdir) {
    UniqueFd fd(::open(Paths::toBytes(topdir + QStringLiteral("/.Trash")).constData(), dirFlags));
    struct stat st;
    if (!fd || ::fstat(fd.get(), &st) != 0 || !(st.st_mode & S_ISVTX)) return {};
    return fd;
}

std::optional<TrashCan> openShared(const QString& topdir, bool create) {
    const UniqueFd shared = sharedTrash(topdir);
    if (!shared) return std::nullopt;
    const QByteArray uid = TrashDirs::uidText().toLatin1();
    const UniqueFd root = openPart(shared.get(), uid.constData(), create);
    if (!root) return std::nullopt;
    return openCan(root.get(), topdir + QStringLiteral("/.Trash/") + TrashDirs::uidText(), topdir, create);
}

std::optional<TrashCan> openPrivate(const QString& topdir, bool create) {
    const UniqueFd top(::open(Paths::toBytes(topdir).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!top) return std::nullopt;
    const QString name = QStringLiteral(".Trash-") + TrashDirs::uidText();
    const UniqueFd root = openPart(top.get(), name.toLatin1().constData(), create);
    if (!root) return std::nullopt;
    const QString rootPath = topdir == QLatin1String("/") ? QLatin1Char('/') + name : topdir + QLatin1Char('/') + name;
    return openCan(root.get(), rootPath, topdir, create);
}

}  // namespace

QString TrashCan::infoPath(const QString& original) const {
    if (isHome()) return original;
    return topdir == QLatin1String("/") ? original.mid(1) : original.mid(topdir.size() + 1);
}

QString TrashCan::base() const { return isHome() ? Home::dataFolder() : topdir; }

namespace TrashDirs {

QString uidText() { return QString::number(::geteuid()); }

std::optional<TrashCan> home(bool create) {
    const QString root = Home::trashFolder();
    UniqueFd fd(::open(Paths::toBytes(root).constData(), dirFlags));
    if (!fd && errno == ENOENT && create && Dirs::makeDirs(root, 0700))
        fd = UniqueFd(::open(Paths::toBytes(root).constData(), dirFlags));
    if (!fd) return std::nullopt;
    return openCan(fd.get(), root, QString(), create);
}

std::optional<TrashCan> top(const QString& topdir, bool create) {
    if (auto can = openShared(topdir, create)) return can;
    return openPrivate(topdir, create);
}

QString mountPointOf(const QString& path) { return SystemFigures::mountPointOf(path); }

bool isOriginalPath(const QString& original) {
    return original.startsWith(QLatin1Char('/')) && original != QLatin1String("/") &&
           Paths::standardize(original, QStringLiteral("/")) == original;
}

bool isItemPath(const QString& trashed) {
    if (!isOriginalPath(trashed)) return false;
    const QString name = Paths::lastComponent(trashed);
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(QLatin1Char('/')) && Paths::lastComponent(Paths::parentOf(trashed)) == QLatin1String("files");
}

QStringList mountPoints() {
    QStringList out;
    QFile table(QStringLiteral("/proc/self/mountinfo"));
    if (!table.open(QIODevice::ReadOnly)) return out;
    for (const QByteArray& line : table.readAll().split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() >= 5) out.append(Paths::fromBytes(SystemFigures::unescapeOctal(fields[4])));
    }
    return out;
}

std::optional<QString> mountWithin(const QString& path, const QStringList& points) {
    for (const QString& point : points)
        if (point != path && Paths::isWithin(point, path)) return point;
    return std::nullopt;
}

std::optional<TrashCan> holding(const QString& trashed) {
    if (!isItemPath(trashed)) return std::nullopt;  // "files/." would be the whole Trash
    const QString filesDir = Paths::parentOf(trashed);
    const QString root = Paths::parentOf(filesDir);
    if (root == Home::trashFolder()) return home(false);

    const QString uid = uidText();
    if (Paths::lastComponent(root) == QStringLiteral(".Trash-") + uid) {
        const QString topdir = Paths::parentOf(root);
        if (mountPointOf(root) != topdir) return std::nullopt;
        return openPrivate(topdir, false);
    }
    const QString shared = Paths::parentOf(root);
    if (Paths::lastComponent(root) == uid && Paths::lastComponent(shared) == QLatin1String(".Trash")) {
        const QString topdir = Paths::parentOf(shared);
        if (mountPointOf(root) != topdir) return std::nullopt;
        return openShared(topdir, false);
    }
    return std::nullopt;
}

}  // namespace TrashDirs
