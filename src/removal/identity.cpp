#include "removal/identity.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "measure/walk_types.h"

std::optional<Identity> identityAt(int dirFd, const QByteArray& name) {
    struct statx sx;
    if (::statx(dirFd, name.constData(), AT_SYMLINK_NOFOLLOW, STATX_INO | STATX_BTIME, &sx) != 0) return std::nullopt;
    Identity id;
    id.dev = deviceNumber(sx.stx_dev_major, sx.stx_dev_minor);
    id.ino = sx.stx_ino;
    if (sx.stx_mask & STATX_BTIME) id.born = double(sx.stx_btime.tv_sec) + double(sx.stx_btime.tv_nsec) / 1e9;
    return id;
}

HistoryEntry::Moved movedItem(const QString& original, const QString& trashed, qint64 bytes,
                              const std::optional<Identity>& identity) {
    HistoryEntry::Moved m{original, trashed, bytes, {}, {}, {}};
    if (identity) {
        m.dev = identity->dev;
        m.ino = identity->ino;
        m.born = identity->born;
    }
    return m;
}
