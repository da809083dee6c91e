#include "measure/dir_listing.h"

#include <fcntl.h>

#include <memory>

#include "core/paths.h"

namespace {

constexpr unsigned statMask = STATX_TYPE | STATX_INO | STATX_NLINK | STATX_BLOCKS | STATX_MTIME | STATX_SIZE;

void fill(const struct statx& sx, DirListing::Stat& out) {
    out.isDir = S_ISDIR(sx.stx_mode);
    out.isFile = S_ISREG(sx.stx_mode);
    out.fileID = sx.stx_ino;
    out.links = out.isFile ? sx.stx_nlink : 1;
    out.allocated = out.isFile ? qint64(sx.stx_blocks) * 512 : 0;
    out.size = out.isFile ? qint64(sx.stx_size) : 0;
    out.ownBlocks = out.isDir ? qint64(sx.stx_blocks) * 512 : 0;
    out.hasModified = (sx.stx_mask & STATX_MTIME) != 0;
    out.modified = sx.stx_mtime.tv_sec;  // whole seconds: the nanoseconds are dropped
    out.device = deviceNumber(sx.stx_dev_major, sx.stx_dev_minor);
    out.mountRoot = (sx.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) && (sx.stx_attributes & STATX_ATTR_MOUNT_ROOT);
}

}  // namespace

namespace DirListing {

char* threadBuffer() {
    thread_local std::unique_ptr<char[]> buffer(new char[bufferSize]);
    return buffer.get();
}

bool statAt(int dirFd, const char* name, Stat& out) {
    struct statx sx;
    if (::statx(dirFd, name, AT_SYMLINK_NOFOLLOW | AT_STATX_DONT_SYNC, statMask, &sx) != 0) return false;
    fill(sx, out);
    return true;
}

bool statOpen(int fd, Stat& out) {
    struct statx sx;
    if (::statx(fd, "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC, statMask, &sx) != 0) return false;
    fill(sx, out);
    return true;
}

bool mountOf(const char* path, qint32& device, quint64& mount) {
    struct statx sx;
    if (::statx(AT_FDCWD, path, AT_SYMLINK_NOFOLLOW, STATX_MNT_ID, &sx) != 0 || !(sx.stx_mask & STATX_MNT_ID))
        return false;
    device = deviceNumber(sx.stx_dev_major, sx.stx_dev_minor);
    mount = sx.stx_mnt_id;
    return true;
}

Walker::Entry toEntry(const RawEntry& raw, const Stat& st) {
    Walker::Entry e;
    e.name = Paths::fromBytes(raw.name, qsizetype(raw.length));
    e.isDir = st.isDir;
    e.isFile = st.isFile;
    e.fileID = st.fileID;
    e.links = st.links;
    e.allocated = st.allocated;
    if (st.hasModified) e.modified = dateFromSeconds(st.modified);
    e.device = st.device;
    return e;
}

}  // namespace DirListing
