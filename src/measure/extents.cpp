#include "measure/extents.h"

#include <fcntl.h>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <sys/ioctl.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

namespace {

// XFS's first geometry record; its flags tell whether the file system was made with reflink.
struct XfsGeometryV1 {
    std::uint32_t blocksize, rtextsize, agblocks, agcount, logblocks, sectsize, inodesize, imaxpct;
    std::uint64_t datablocks, rtblocks, rtextents, logstart;
    unsigned char uuid[16];
    std::uint32_t sunit, swidth;
    std::int32_t version;
    std::uint32_t flags, logsectsize, rtsectsize, dirblocksize;
};
constexpr unsigned long xfsGeometryV1 = _IOR('X', 100, XfsGeometryV1);
constexpr std::uint32_t xfsReflink = 0x100000;

// Extents whose physical place is not known yet or not a place of their own.
constexpr std::uint32_t notPlaced =
    FIEMAP_EXTENT_UNKNOWN | FIEMAP_EXTENT_DELALLOC | FIEMAP_EXTENT_DATA_INLINE | FIEMAP_EXTENT_NOT_ALIGNED;

constexpr unsigned batch = 128;
struct Map {
    alignas(struct fiemap) unsigned char bytes[sizeof(struct fiemap) + batch * sizeof(struct fiemap_extent)];
};

}  // namespace

namespace Extents {

bool canShare(int fd) {
    static const bool off = qEnvironmentVariableIsSet("QUARLE_NO_EXTENTS");
    if (off) return false;
    struct statfs fs;
    if (::fstatfs(fd, &fs) != 0) return false;
    if (fs.f_type == BTRFS_SUPER_MAGIC) return true;
    if (fs.f_type != XFS_SUPER_MAGIC) return false;
    XfsGeometryV1 geometry{};
    if (::ioctl(fd, xfsGeometryV1, &geometry) != 0) return true;  // unknown: look rather than overcharge
    return (geometry.flags & xfsReflink) != 0;
}

bool sharedOf(int fd, std::vector<Range>& out) {
    out.clear();
    thread_local Map map;
    auto* head = reinterpret_cast<struct fiemap*>(map.bytes);
    std::uint64_t from = 0;
    for (;;) {
        std::memset(head, 0, sizeof *head);
        head->fm_start = from;
        head->fm_length = FIEMAP_MAX_OFFSET - from;
        head->fm_extent_count = batch;
        if (::ioctl(fd, FS_IOC_FIEMAP, head) != 0) return false;
        const unsigned got = head->fm_mapped_extents;
        if (got == 0) return true;
        for (unsigned i = 0; i < got; ++i) {
            const fiemap_extent& e = head->fm_extents[i];
            if ((e.fe_flags & FIEMAP_EXTENT_SHARED) && !(e.fe_flags & notPlaced) && e.fe_length > 0)
                out.push_back({e.fe_physical, e.fe_physical + e.fe_length});
            if (e.fe_flags & FIEMAP_EXTENT_LAST) return true;
        }
        const fiemap_extent& last = head->fm_extents[got - 1];
        from = last.fe_logical + last.fe_length;
        if (got < batch) return true;
    }
}

bool shared(int dirFd, const char* name, std::vector<Range>& out) {
    const int fd = ::openat(dirFd, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0) {
        out.clear();
        return false;
    }
    const bool ok = sharedOf(fd, out);
    ::close(fd);
    return ok;
}

}  // namespace Extents
