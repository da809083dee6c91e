#pragma once
// Figures of the running system that a scan reads: swap in use, a file system's space, the
// per-user temporary folder. Each is absent or 0 when it cannot be read.

#include <QString>
#include <optional>

namespace SystemFigures {

// Bytes of swap in use: the Used column of /proc/swaps (KiB) summed.
qint64 swapUsed();
// The same from the text of /proc/swaps; lines that do not parse count nothing.
qint64 parseSwaps(const QByteArray& text);

struct Space {
    QString mountPoint;  // where the file system holding the path is mounted
    qint64 total = 0;
    qint64 free = 0;  // free for an ordinary user
    qint64 used = 0;  // total less all free blocks

    bool operator==(const Space&) const = default;
};
// The file system holding `path`; nothing when it cannot be read.
std::optional<Space> space(const QString& path);

// $TMPDIR when set and absolute, else /tmp, without trailing slashes; nothing when it does not
// exist or lies on another file system than `home`.
std::optional<QString> userTempFolder(const QString& home);

}  // namespace SystemFigures
