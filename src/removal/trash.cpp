#include "removal/trash.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>

#include <QRandomGenerator>
#include <cerrno>
#include <cstdlib>
#include <functional>

#include "core/home.h"
#include "core/paths.h"
#include "removal/dirs.h"
#include "removal/trash_dirs.h"
#include "removal/trash_info.h"

namespace {

const QByteArray infoSuffix = ".trashinfo";
// An item being erased is first renamed to a name of this form in its files/ folder.
const QByteArray erasingPrefix = ".quarle-erasing-";
// NAME.trashinfo must still fit the 255 bytes of a file name.
constexpr qsizetype maxItemName = 255 - 10;
// Names tried one after the other ("name", "name.2", …) before random ones are tried.
constexpr int orderedTries = 1000;
constexpr int randomTries = 100;

// The n-th name to try for an item called `name`, shortened when needed without splitting a
// UTF-8 character.
QByteArray candidate(const QByteArray& name, int n) {
    QByteArray suffix;
    if (n > orderedTries)
        suffix = '.' + QByteArray::number(QRandomGenerator::global()->bounded(1'000'000'000));
    else if (n > 1)
        suffix = '.' + QByteArray::number(n);
    QByteArray base = name;
    if (base.startsWith(erasingPrefix)) base.prepend('_');  // such names mean "being erased"
    if (base.size() + suffix.size() > maxItemName) {
        qsizetype cut = maxItemName - suffix.size();
        while (cut > 0 && (static_cast<unsigned char>(base[cut]) & 0xC0) == 0x80) --cut;
        base.truncate(cut);
    }
    return base + suffix;
}

bool writeAll(int fd, const QByteArray& bytes) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.constData() + done, std::size_t(bytes.size() - done));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += n;
    }
    return true;
}

enum class Move { done, crossDevice, failed };

// Claims a name with an info file created exclusively, then renames the item under that name
// without replacing anything; a name taken in files/ (a stray file) moves on to the next one.
Move moveInto(const TrashCan& can, int parentFd, const QByteArray& name, const QByteArray& infoText,
              QByteArray& chosen) {
    for (int n = 1; n <= orderedTries + randomTries; ++n) {
        chosen = candidate(name, n);
        const QByteArray infoName = chosen + infoSuffix;
        const UniqueFd info(
            ::openat(can.info.get(), infoName.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!info) {
            if (errno == EEXIST) continue;
            return Move::failed;
        }
        if (!writeAll(info.get(), infoText)) {
            ::unlinkat(can.info.get(), infoName.constData(), 0);
            return Move::failed;
        }
        if (::renameat2(parentFd, name.constData(), can.files.get(), chosen.constData(), RENAME_NOREPLACE) == 0)
            return Move::done;
        const int why = errno;
        ::unlinkat(can.info.get(), infoName.constData(), 0);
        if (why == EEXIST) continue;
        return why == EXDEV ? Move::crossDevice : Move::failed;
    }
    return Move::failed;
}

QByteArray nameOf(const QString& path) { return Paths::toBytes(Paths::lastComponent(path)); }

QString resolvedHome(const QString& home) {
    char* real = ::realpath(Paths::toBytes(home).constData(), nullptr);
    if (!real) return home;
    const QString out = Paths::fromBytes(QByteArray(real));
    ::free(real);
    return out;
}

}  // namespace

namespace Trash {

Batch::Batch()
    : home_(Home::path()),
      realHome_(resolvedHome(home_)),
      homeFd_(::open(Paths::toBytes(home_).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    struct stat st;
    if (homeFd_ && ::fstat(homeFd_.get(), &st) == 0) homeDevice_ = st.st_dev;
}

const TrashCan* Batch::opened(const QString& key, const std::function<std::optional<TrashCan>()>& open) {
    auto it = cans_.find(key);
    if (it == cans_.end()) it = cans_.emplace(key, open()).first;
    return it->second ? &*it->second : nullptr;
}

const TrashCan* Batch::holding(const QString& trashed) {
    return opened(Paths::parentOf(trashed), [&] { return TrashDirs::holding(trashed); });
}

// The Trash at the top of the file system that holds `resolved`, when the item is on it.
const TrashCan* Batch::topFor(const QString& resolved, dev_t device) {
    const QString topdir = TrashDirs::mountPointOf(Paths::parentOf(resolved));
    struct stat st;
    if (::stat(Paths::toBytes(topdir).constData(), &st) != 0 || st.st_dev != device) return nullptr;
    return opened(QStringLiteral("top:") + topdir, [&] { return TrashDirs::top(topdir, true); });
}

// The folder at `path`, opened below the home folder when it lies there (the home folder itself
// may be reached through a link), else from "/"; no link is followed on the way.
UniqueFd Batch::folder(const QString& path, bool create, mode_t mode) {
    if (homeFd_ && Paths::isWithin(path, realHome_))
        return Dirs::openFrom(homeFd_.get(), realHome_, path, create, mode);
    if (homeFd_ && Paths::isWithin(path, home_)) return Dirs::openFrom(homeFd_.get(), home_, path, create, mode);
    return Dirs::open(path, QStringLiteral("/"), create, mode);
}

std::optional<Put> Batch::put(const QString& resolved, const QDateTime& date, const QUuid& entry) {
    const UniqueFd parent = folder(Paths::parentOf(resolved), false, 0700);
    const QByteArray name = nameOf(resolved);
    struct stat st;
    if (!parent || name.isEmpty() || ::fstatat(parent.get(), name.constData(), &st, AT_SYMLINK_NOFOLLOW) != 0)
        return std::nullopt;

    const TrashCan* can =
        opened(Home::trashFolder() + QStringLiteral("/files"), [] { return TrashDirs::home(true); });
    bool triedTop = false;
    if (!can && homeDevice_ && *homeDevice_ == st.st_dev) return std::nullopt;  // the home Trash or nothing
    if (!can || can->device != st.st_dev) {
        can = topFor(resolved, st.st_dev);
        triedTop = true;
    }
    while (can) {
        QByteArray chosen;
        const QByteArray info = TrashInfo::format(can->infoPath(resolved), date, entry);
        const Move moved = moveInto(*can, parent.get(), name, info, chosen);
        if (moved == Move::done)
            return Put{can->root + QStringLiteral("/files/") + Paths::fromBytes(chosen),
                       identityAt(can->files.get(), chosen)};
        if (moved != Move::crossDevice || triedTop) break;
        can = topFor(resolved, st.st_dev);  // same device, another mount: its own Trash
        triedTop = true;
    }
    return std::nullopt;
}

Back Batch::putBack(const QString& trashed, const QString& original) {
    if (isBeingErased(trashed)) return Back::beingEmptied;
    const TrashCan* can = holding(trashed);
    if (!can) return Back::noTrash;
    if (!TrashDirs::isOriginalPath(original)) return Back::failed;
    // Folders that are gone are made private: what they held may have been private too.
    const UniqueFd parent = folder(Paths::parentOf(original), true, 0700);
    if (!parent) return Back::folderUnusable;
    const QByteArray name = nameOf(trashed);
    if (::renameat2(can->files.get(), name.constData(), parent.get(), nameOf(original).constData(),
                    RENAME_NOREPLACE) != 0) {
        if (errno == EEXIST) return Back::occupied;
        if (errno == ENOENT) return Back::missing;
        return errno == EACCES || errno == EPERM || errno == EROFS ? Back::folderUnusable : Back::failed;
    }
    // The item is back; an info file left behind only names it in the Trash listing until the next tidy.
    ::unlinkat(can->info.get(), (name + infoSuffix).constData(), 0);
    return Back::done;
}

std::optional<QString> Batch::claim(const QString& trashed) {
    if (isBeingErased(trashed)) return trashed;
    const TrashCan* can = holding(trashed);
    if (!can) return std::nullopt;
    const QByteArray name = nameOf(trashed);
    for (int n = 0; n < randomTries; ++n) {
        const QByteArray hidden =
            erasingPrefix + QByteArray::number(QRandomGenerator::global()->generate64(), 16);
        if (::renameat2(can->files.get(), name.constData(), can->files.get(), hidden.constData(), RENAME_NOREPLACE) != 0) {
            if (errno == EEXIST) continue;
            return std::nullopt;
        }
        // The info file follows, so that other tools list the item under its new name.
        ::renameat2(can->info.get(), (name + infoSuffix).constData(), can->info.get(),
                    (hidden + infoSuffix).constData(), RENAME_NOREPLACE);
        return Paths::parentOf(trashed) + QLatin1Char('/') + Paths::fromBytes(hidden);
    }
    return std::nullopt;
}

bool Batch::erase(const QString& trashed) {
    const TrashCan* can = holding(trashed);
    if (!can) return false;
    const QByteArray name = nameOf(trashed);
    if (!Dirs::removeAt(can->files.get(), name)) return false;  // what is left stays listed in the Trash
    if (::unlinkat(can->info.get(), (name + infoSuffix).constData(), 0) != 0 && errno != ENOENT) return false;
    return true;
}

bool isBeingErased(const QString& trashed) {
    return Paths::toBytes(Paths::lastComponent(trashed)).startsWith(erasingPrefix);
}

std::optional<Put> put(const QString& resolved, const QDateTime& date, const QUuid& entry) {
    return Batch().put(resolved, date, entry);
}

Back putBack(const QString& trashed, const QString& original) { return Batch().putBack(trashed, original); }

bool erase(const QString& trashed) { return Batch().erase(trashed); }

bool emptyHome() {
    const std::optional<TrashCan> can = TrashDirs::home(true);
    if (!can) return false;
    for (const QByteArray& name : Dirs::namesIn(can->files.get()))
        if (Dirs::removeAt(can->files.get(), name)) ::unlinkat(can->info.get(), (name + infoSuffix).constData(), 0);
    // Info files left without an item describe nothing any more.
    for (const QByteArray& infoName : Dirs::namesIn(can->info.get())) {
        const QByteArray item = infoName.endsWith(infoSuffix) ? infoName.chopped(infoSuffix.size()) : QByteArray();
        struct stat st;
        if (item.isEmpty() || ::fstatat(can->files.get(), item.constData(), &st, AT_SYMLINK_NOFOLLOW) != 0)
            Dirs::removeAt(can->info.get(), infoName);
    }
    ::unlink(Paths::toBytes(can->root + QStringLiteral("/directorysizes")).constData());
    return true;
}

}  // namespace Trash
