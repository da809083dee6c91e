#pragma once
// What a walk reads and what it reports.

#include <QDateTime>
#include <QString>
#include <functional>
#include <limits>
#include <optional>

// Polled by every long walk; returning true stops it.
using Cancelled = std::function<bool()>;

namespace Walker {

// One directory entry as read from the file system.
struct Entry {
    QString name;
    bool isDir = false;
    bool isFile = false;  // a regular file
    quint64 fileID = 0;   // inode number
    quint32 links = 1;    // hard-link count; 1 for anything but a regular file
    qint64 allocated = 0;  // bytes allocated on disk; 0 for anything but a regular file
    qint64 privateSize = 0;  // bytes not shared with a clone; 0 unless looked up
    quint64 cloneID = 0;
    bool mayShare = false;
    std::optional<QDateTime> modified;  // whole seconds
    qint32 device = 0;

    bool operator==(const Entry&) const = default;
};

}  // namespace Walker

// What a walk found.
struct WalkResult {
    qint64 bytes = 0;  // space charged
    qint64 files = 0;  // regular files counted
    qint64 denied = 0;  // folders that could not be opened or read
    std::optional<QDateTime> newest;  // latest modification of a counted file
    bool shares = false;  // a counted file shares blocks with other files

    void add(const WalkResult& other);
    bool operator==(const WalkResult&) const = default;
};

// The hot loop's form of WalkResult: the newest date as seconds, no QDateTime per file.
struct Tally {
    static constexpr qint64 noDate = std::numeric_limits<qint64>::min();
    qint64 bytes = 0;
    qint64 files = 0;
    qint64 denied = 0;
    qint64 newest = noDate;
    bool shares = false;

    void add(const Tally& other);
    void seen(qint64 modified) {
        if (modified > newest) newest = modified;
    }
    WalkResult result() const;
};

// The 32-bit device number of a volume, as the kernel encodes major and minor.
qint32 deviceNumber(unsigned major, unsigned minor);
qint32 deviceNumber(quint64 statDevice);  // from a stat() st_dev

QDateTime dateFromSeconds(qint64 seconds);
