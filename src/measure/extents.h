#pragma once
// The blocks a file shares with other files, on file systems that can share them (Btrfs, XFS with
// reflink): its extents read with FS_IOC_FIEMAP. File systems that cannot share are never asked.

#include <QtGlobal>
#include <vector>

namespace Extents {

// Physical bytes [start, end) on the file system's device.
struct Range {
    quint64 start;
    quint64 end;
};

// Whether files on the file system of the open descriptor `fd` can share blocks: Btrfs always,
// XFS only when made with reflink. Off when QUARLE_NO_EXTENTS is set (a benchmark's baseline).
bool canShare(int fd);

// Whether a file of `allocated` bytes on disk and `size` bytes long may hold blocks of its own that
// other files share: not when it has no block, nor when Btrfs keeps it inside its metadata (up to
// 2 KiB by default), where copies never share.
constexpr bool worthLooking(qint64 allocated, qint64 size) { return allocated >= 4096 && size > 2048; }

// The shared ranges of the file `name` in the open folder `dirFd`, into `out` (cleared first).
// False when the file could not be opened or mapped; it is then charged as unshared.
bool shared(int dirFd, const char* name, std::vector<Range>& out);

// The same for an open file.
bool sharedOf(int fd, std::vector<Range>& out);

}  // namespace Extents
