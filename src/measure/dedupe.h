#pragma once
// What one measuring run has already charged, so that a file with several hard links, or the
// blocks a clone family shares, are counted once. One per run, shared by all its threads.

#include <QtGlobal>
#include <mutex>
#include <unordered_set>

#include "measure/walk_types.h"

class Dedupe {
public:
    // Bytes to add for a regular file.
    qint64 charge(const Walker::Entry& entry);

    // The walk's fast form. Files with one link and no shared blocks never take the lock.
    qint64 chargeFile(qint32 device, quint64 fileID, quint32 links, qint64 allocated) {
        if (links < 2) return allocated;
        return chargeLinked(device, fileID, allocated);
    }

private:
    qint64 chargeLinked(qint32 device, quint64 fileID, qint64 allocated);

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

    std::mutex lock_;
    // Keyed by device and inode: a walk stays on one device, but runs over several roots need not.
    std::unordered_set<FileKey, FileKeyHash> links_;
    std::unordered_set<quint64> clones_;
};
