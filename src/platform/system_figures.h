#pragma once
// Figures of the running system that a scan reads: swap in use, a file system's space, the
// per-user temporary folder. Each is absent or 0 when it cannot be read.

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace SystemFigures {

// Bytes of swap in use: the Used column of /proc/swaps (KiB) summed.
qint64 swapUsed();
// The same from the text of /proc/swaps; lines that do not parse count nothing.
qint64 parseSwaps(const QByteArray& text);

// One line of /proc/swaps.
struct SwapArea {
    QString path;  // the file or partition, its escapes undone
    QString type;  // "file" or "partition"
    qint64 size = 0;  // bytes set aside for it
    qint64 used = 0;  // bytes in use

    bool operator==(const SwapArea&) const = default;
};
// The lines of /proc/swaps that parse, in order.
QList<SwapArea> parseSwapAreas(const QByteArray& text);
// Undoes the octal escapes (\040 for a blank) the kernel writes in names in /proc.
QByteArray unescapeOctal(const QByteArray& text);
// The mount point of the file system that holds `path` (an absolute, resolved path).
QString mountPointOf(const QString& path);
// The same from the text of a mountinfo file.
QString mountPointIn(const QByteArray& mountinfo, const QString& path);

struct Space {
    QString mountPoint;  // where the file system holding the path is mounted
    qint64 total = 0;
    qint64 free = 0;  // free for an ordinary user
    qint64 used = 0;  // total less all free blocks
    qint64 reserved = 0;  // free blocks only the administrator may use

    bool operator==(const Space&) const = default;
};
// The file system holding `path`; nothing when it cannot be read.
std::optional<Space> space(const QString& path);

// Blocks the file system keeps for the administrator, in bytes: (free − available) × block size,
// never negative.
qint64 reserved(quint64 freeBlocks, quint64 availableBlocks, quint64 blockSize);

// $TMPDIR when set and absolute, else /tmp, without trailing slashes; nothing when it does not
// exist or lies on another file system than `home`.
std::optional<QString> userTempFolder(const QString& home);

// The folder that stands in for "/" when the system's own folders are read: QUARLE_SYSTEM_ROOT,
// made absolute, or "" for the real root. Tests and fixture runs never read this machine's /usr.
QString systemRoot();
// The same, but nothing when QUARLE_SYSTEM_ROOT is unset or empty. The only place that reads it.
std::optional<QString> givenSystemRoot();

// Bytes the systemd journal takes on disk, as `journalctl --disk-usage` counts them (only the
// journals under `directory` when one is given); nothing when journalctl is missing or fails.
std::optional<qint64> journalUsage(const QString& directory = {});
// The figure in journalctl's answer: "… take up 1.5G in the file system." (1024-based units).
std::optional<qint64> parseJournalUsage(const QString& text);

}  // namespace SystemFigures
