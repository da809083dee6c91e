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
