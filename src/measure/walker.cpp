#include "measure/walker.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "core/paths.h"
#include "measure/dir_listing.h"
#include "measure/extents.h"
#include "measure/shared_walk.h"

namespace Walker {

int threadCount() {
    static const int count = [] {
        bool ok = false;
        const int forced = qEnvironmentVariableIntValue("QUARLE_WALK_THREADS", &ok);
        return ok && forced > 0 ? forced : 8;
    }();
    return count;
}

bool list(const QString& path, std::optional<qint32> device,
          const std::function<void(const Entry&)>& body) {
    const int fd = ::open(Paths::toBytes(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) return false;
    const bool complete = DirListing::forEach(fd, [&](const DirListing::RawEntry& raw) {
        DirListing::Stat st;
        if (!DirListing::statAt(fd, raw.name, st)) return;  // vanished between listing and stat
        if (device && st.isDir && st.device != *device) return;
        body(DirListing::toEntry(raw, st));
    });
    ::close(fd);
    return complete;
}

WalkResult walk(const QString& path, std::optional<qint32> device, Dedupe& seen,
                const Cancelled& cancelled) {
    SharedWalk::Options options;
    options.device = device;
    options.cancelled = cancelled;
    options.threads = 1;
    options.pollEvery = 256;
    options.dedupe = &seen;
    return SharedWalk({path}, std::move(options)).runEach().value(0);
}

WalkResult size(const QString& path, bool parallel, const Cancelled& cancelled) {
    struct stat st;
    if (::lstat(Paths::toBytes(path).constData(), &st) != 0) {
        WalkResult none;
        if (errno == EPERM || errno == EACCES) none.denied = 1;
        return none;
    }
    if (S_ISREG(st.st_mode))
        return {qint64(st.st_blocks) * 512, 1, 0, dateFromSeconds(st.st_mtim.tv_sec)};
    if (!S_ISDIR(st.st_mode)) return {};
    const qint32 dev = deviceNumber(st.st_dev);
    if (!parallel) {
        Dedupe seen;
        return walk(path, dev, seen, cancelled);
    }
    SharedWalk::Options options;
    options.device = dev;
    options.cancelled = cancelled;
    return SharedWalk({path}, std::move(options)).runEach().value(0);
}

std::optional<qint32> device(const QString& path) {
    struct stat st;
    if (::lstat(Paths::toBytes(path).constData(), &st) != 0) return std::nullopt;
    return deviceNumber(st.st_dev);
}

qint64 ownBlocks(const QString& folder) {
    struct stat st;
    if (::lstat(Paths::toBytes(folder).constData(), &st) != 0 || !S_ISDIR(st.st_mode)) return 0;
    return qint64(st.st_blocks) * 512;
}

qint64 heldElsewhere(const QString& path, const Cancelled& cancelled) {
    const QByteArray bytes = Paths::toBytes(path);
    struct stat st;
    // Only files and folders are opened: opening a device or a pipe may do something.
    if (::lstat(bytes.constData(), &st) != 0 || !(S_ISREG(st.st_mode) || S_ISDIR(st.st_mode))) return 0;
    const int fd = ::open(bytes.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0) return 0;
    const bool sharing = ::fstat(fd, &st) == 0 && (S_ISREG(st.st_mode) || S_ISDIR(st.st_mode)) && Extents::canShare(fd);
    std::vector<Extents::Range> shared;
    const bool file = sharing && S_ISREG(st.st_mode) && Extents::sharedOf(fd, shared);
    ::close(fd);
    if (file) {
        qint64 held = 0;
        for (const Extents::Range& r : shared) held += qint64(r.end - r.start);
        return held;
    }
    if (!sharing || !S_ISDIR(st.st_mode)) return 0;
    Dedupe seen;
    seen.countRepeats();
    SharedWalk::Options options;
    options.device = deviceNumber(st.st_dev);
    options.cancelled = cancelled;
    options.dedupe = &seen;
    SharedWalk({path}, std::move(options)).runEach();
    return seen.heldOnce();
}

std::optional<std::pair<qint64, quint64>> cloneInfo(const QString& path) {
    const int fd = ::open(Paths::toBytes(path).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0) return std::nullopt;
    struct stat st;
    std::vector<Extents::Range> shared;
    const bool ok = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && Extents::canShare(fd) && Extents::sharedOf(fd, shared);
    ::close(fd);
    if (!ok) return std::nullopt;
    qint64 sharedBytes = 0;
    for (const Extents::Range& r : shared) sharedBytes += qint64(r.end - r.start);
    const qint64 allocated = qint64(st.st_blocks) * 512;
    // The family is named by where its first shared block lies; 0 when nothing is shared.
    return std::pair{std::max<qint64>(allocated - sharedBytes, 0), shared.empty() ? 0 : shared.front().start + 1};
}

}  // namespace Walker
