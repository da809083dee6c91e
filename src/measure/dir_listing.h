#pragma once
// Reading one open folder with getdents64 into a 128 KiB buffer, and stat'ing single entries with
// statx, asking only for what sizing needs. The walk's hot loop works on these raw bytes.

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>

#include "measure/walk_types.h"

namespace DirListing {

constexpr std::size_t bufferSize = 128 * 1024;

// This thread's listing buffer.
char* threadBuffer();

struct RawEntry {
    const char* name;
    std::size_t length;
    unsigned char type;  // DT_* from the directory entry; DT_UNKNOWN when the file system is silent
};

// Calls `body(RawEntry)` for every entry of the open folder but "." and ".."; false when a read
// failed (entries delivered before the failure stay delivered).
template <typename Body>
bool forEach(int fd, Body&& body);

struct Stat {
    bool isDir = false;
    bool isFile = false;
    quint64 fileID = 0;
    quint32 links = 1;
    qint64 allocated = 0;
    qint64 size = 0;  // a regular file's length; 0 for anything else
    qint64 ownBlocks = 0;  // a folder's own blocks (its list of entries); 0 for anything else
    qint64 modified = 0;  // seconds
    bool hasModified = false;
    qint32 device = 0;
    bool mountRoot = false;  // the root of a mount (a bind mount of this file system too)
};

// statx of `name` inside the open folder `dirFd`, never following a link.
bool statAt(int dirFd, const char* name, Stat& out);
// statx of the open folder itself.
bool statOpen(int fd, Stat& out);
// The device and mount of a path (a final link not followed).
bool mountOf(const char* path, qint32& device, quint64& mount);

Walker::Entry toEntry(const RawEntry& raw, const Stat& st);

}  // namespace DirListing

// ---- implementation of the template ----

#include <sys/syscall.h>
#include <unistd.h>

namespace DirListing {

struct LinuxDirent64 {
    std::uint64_t d_ino;
    std::int64_t d_off;
    unsigned short d_reclen;
    unsigned char d_type;
    char d_name[1];
};

template <typename Body>
bool forEach(int fd, Body&& body) {
    char* buffer = threadBuffer();
    for (;;) {
        const long got = ::syscall(SYS_getdents64, fd, buffer, bufferSize);
        if (got == 0) return true;
        if (got < 0) return false;
        for (long offset = 0; offset < got;) {
            const auto* d = reinterpret_cast<const LinuxDirent64*>(buffer + offset);
            offset += d->d_reclen;
            const char* n = d->d_name;
            if (n[0] == '.' && (n[1] == 0 || (n[1] == '.' && n[2] == 0))) continue;
            body(RawEntry{n, std::char_traits<char>::length(n), d->d_type});
        }
    }
}

}  // namespace DirListing
