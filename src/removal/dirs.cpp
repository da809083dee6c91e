#include "removal/dirs.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <QList>
#include <cerrno>
#include <optional>
#include <vector>

#include "core/paths.h"

namespace {

constexpr int dirFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

QList<QByteArray> components(const QString& path) {
    QList<QByteArray> out;
    for (const QByteArray& part : Paths::toBytes(path).split('/'))
        if (!part.isEmpty()) out.append(part);
    return out;
}

// A folder we own but may not change (a read-only tree in the Trash) is opened up before emptying.
void allowChanges(int fd, const struct stat& st) {
    if (st.st_uid == ::geteuid() && (st.st_mode & 0700) != 0700) ::fchmod(fd, (st.st_mode & 07777) | 0700);
}

// The file system and the mount a folder is seen through. A folder mounted inside the tree (even a
// bind mount of the same file system) differs in one of them.
struct Place {
    dev_t dev = 0;
    quint64 mount = 0;
    bool operator==(const Place&) const = default;
};

std::optional<Place> placeOf(int fd) {
    struct statx sx;
    if (::statx(fd, "", AT_EMPTY_PATH, STATX_INO | STATX_MNT_ID, &sx) != 0) return std::nullopt;
    Place p;
    p.dev = makedev(sx.stx_dev_major, sx.stx_dev_minor);
    if (sx.stx_mask & STATX_MNT_ID) p.mount = sx.stx_mnt_id;
    return p;
}

}  // namespace

namespace Dirs {

QList<QByteArray> namesIn(int dirFd) {
    QList<QByteArray> names;
    const int copy = ::dup(dirFd);
    if (copy < 0) return names;
    DIR* dir = ::fdopendir(copy);
    if (!dir) {
        ::close(copy);
        return names;
    }
    ::rewinddir(dir);  // the copy shares its offset with dirFd, which may have been read before
    while (const dirent* e = ::readdir(dir)) {
        const QByteArray name(e->d_name);
        if (name != "." && name != "..") names.append(name);
    }
    ::closedir(dir);
    return names;
}

UniqueFd open(const QString& path, const QString& trusted, bool create, mode_t mode) {
    if (!Paths::isWithin(path, trusted)) return {};
    const UniqueFd start(::open(Paths::toBytes(trusted).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!start) return {};
    return openFrom(start.get(), trusted, path, create, mode);
}

UniqueFd openFrom(int trustedFd, const QString& trusted, const QString& path, bool create, mode_t mode) {
    if (!Paths::isWithin(path, trusted)) return {};
    UniqueFd cur(::fcntl(trustedFd, F_DUPFD_CLOEXEC, 0));
    if (!cur) return {};
    const QString rest = trusted == QLatin1String("/") ? path : path.mid(trusted.size());
    for (const QByteArray& part : components(rest)) {
        if (part == "..") return {};
        UniqueFd next(::openat(cur.get(), part.constData(), dirFlags));
        if (!next && errno == ENOENT && create) {
            if (::mkdirat(cur.get(), part.constData(), mode) != 0 && errno != EEXIST) return {};
            next = UniqueFd(::openat(cur.get(), part.constData(), dirFlags));
        }
        if (!next) return {};
        cur = std::move(next);
    }
    return cur;
}

bool makeDirs(const QString& path, mode_t mode) {
    QByteArray prefix;
    for (const QByteArray& part : components(path)) {
        prefix += '/' + part;
        if (::mkdir(prefix.constData(), mode) != 0 && errno != EEXIST) return false;
    }
    struct stat st;
    return ::stat(Paths::toBytes(path).constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool removeAt(int dirFd, const QByteArray& name) {
    if (::unlinkat(dirFd, name.constData(), 0) == 0 || errno == ENOENT) return true;
    if (errno != EISDIR) return false;

    // The tree is emptied holding one descriptor at a time, so any depth fits; the way back up
    // goes through "..", checked against the folder that was come from.
    struct Level {
        QByteArray name;  // in the folder above
        dev_t dev;
        ino_t ino;
        QList<QByteArray> names;
        qsizetype next = 0;
    };
    struct stat top;
    const std::optional<Place> home = placeOf(dirFd);
    if (::fstat(dirFd, &top) != 0 || !home) return false;
    std::vector<Level> levels;
    bool ok = true;
    // Never leaves the file system and mount the tree lies on: a folder mounted inside stays as it
    // is, with what holds it.
    const auto enter = [&](int parent, const QByteArray& child) -> UniqueFd {
        UniqueFd fd(::openat(parent, child.constData(), dirFlags));
        struct stat st;
        if (!fd || ::fstat(fd.get(), &st) != 0 || placeOf(fd.get()) != home) return {};
        allowChanges(fd.get(), st);
        levels.push_back({child, st.st_dev, st.st_ino, namesIn(fd.get()), 0});
        return fd;
    };
    UniqueFd cur = enter(dirFd, name);
    if (!cur) return false;
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next < level.names.size()) {
            const QByteArray child = level.names[level.next++];
            if (::unlinkat(cur.get(), child.constData(), 0) == 0 || errno == ENOENT) continue;
            if (errno != EISDIR) {
                ok = false;
                continue;
            }
            UniqueFd sub = enter(cur.get(), child);
            if (sub)
                cur = std::move(sub);
            else
                ok = false;
            continue;
        }
        const QByteArray done = level.name;
        levels.pop_back();
        const dev_t upDev = levels.empty() ? top.st_dev : levels.back().dev;
        const ino_t upIno = levels.empty() ? top.st_ino : levels.back().ino;
        UniqueFd up(levels.empty() ? ::dup(dirFd) : ::openat(cur.get(), "..", dirFlags));
        struct stat st;
        if (!up || ::fstat(up.get(), &st) != 0 || st.st_dev != upDev || st.st_ino != upIno)
            return false;  // the tree moved while it was being emptied: stop here
        cur = std::move(up);
        if (::unlinkat(cur.get(), done.constData(), AT_REMOVEDIR) != 0 && errno != ENOENT) ok = false;
    }
    return ok;
}

}  // namespace Dirs
