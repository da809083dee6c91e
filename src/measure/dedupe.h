#pragma once
// What one measuring run has already charged, so that a file with several hard links, or blocks
// shared between reflinked copies, are counted once. One per run, shared by all its threads.

#include <QtGlobal>
#include <atomic>
#include <map>
#include <mutex>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "measure/extents.h"
#include "measure/walk_types.h"

class Dedupe {
public:
    Dedupe();

    // Bytes to add for a regular file.
    qint64 charge(const Walker::Entry& entry);

    // The walk's fast form. Files with one link never take the lock, unless the run reaches one
    // file system through two mounts.
    qint64 chargeFile(qint32 device, quint64 fileID, quint32 links, qint64 allocated) {
        if (links < 2 && !everyFile_.load(std::memory_order_relaxed)) return allocated;
        return firstSight(device, fileID) ? allocated : 0;
    }

    // A folder's own blocks, once per run by device and inode: overlapping roots, or a second walk
    // through this record, meet the same folder again.
    qint64 chargeFolder(qint32 device, quint64 fileID, qint64 ownBlocks) {
        return ownBlocks > 0 && firstSight(device, fileID) ? ownBlocks : 0;
    }

    // True the first time this run meets the file (for files that may be met more than once).
    bool firstSight(qint32 device, quint64 fileID);
    bool mayMeetTwice(quint32 links) const {
        return links >= 2 || everyFile_.load(std::memory_order_relaxed);
    }

    // A file of `allocated` bytes whose physical ranges `shared` other files may hold too: its own
    // bytes plus the part of those ranges no earlier file of this run has paid for.
    qint64 chargeShared(qint32 device, qint64 allocated, const std::vector<Extents::Range>& shared);

    // Whether files on `device` can share blocks; `fd` (an open folder of that device) is asked once
    // per device and run.
    bool canShare(qint32 device, int fd);

    // From now on every file is charged once by device and inode, not only hard links:
    // for runs whose roots are two mounts of one file system.
    void chargeEveryFile() { everyFile_ = true; }

    // The charged-range set's size, for measuring its memory.
    std::size_t rangeCount();

    // From now on shared ranges met again are recorded too, so that heldOnce() can tell the bytes
    // only one file of the run holds. For runs over one item, whose other holders lie elsewhere.
    void countRepeats() { repeats_ = true; }
    // Bytes of shared ranges met by exactly one file of the run.
    qint64 heldOnce();

private:
    struct FileKey {
        qint32 device;
        quint64 fileID;
        bool operator==(const FileKey&) const = default;
    };
    struct FileKeyHash {
        std::size_t operator()(const FileKey& k) const {
            return std::hash<quint64>()(k.fileID * 0x9E3779B97F4A7C15ULL ^ quint64(quint32(k.device)));
        }
    };

    const quint64 run_;  // tells this run's answers apart in the threads' caches
    std::atomic<bool> everyFile_{false};
    std::mutex lock_;
    // Keyed by device and inode: a walk stays on one device, but runs over several roots need not.
    std::unordered_set<FileKey, FileKeyHash> links_;
    std::unordered_set<quint64> clones_;
    // Per device, the physical ranges already charged: disjoint, start -> end.
    std::unordered_map<qint32, std::map<quint64, quint64>> ranges_;
    bool repeats_ = false;  // set before the run starts
    std::unordered_map<qint32, std::map<quint64, quint64>> again_;  // met twice or more, when counted
    std::unordered_map<qint32, bool> sharing_;
};
