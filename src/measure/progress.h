#pragma once
// Objects shared between a running walk and whoever watches or stops it; each has its own lock.

#include <QtGlobal>
#include <mutex>

// Running counters of a walk, read on a timer while it runs.
class WalkProgress {
public:
    void add(qint64 files, qint64 bytes);
    qint64 files() const;
    qint64 bytes() const;

private:
    mutable std::mutex lock_;
    qint64 n_ = 0;
    qint64 b_ = 0;
};

// A cancellation flag shared between the interface and a scan.
class ScanCancel {
public:
    void cancel();
    bool stopped() const;

private:
    mutable std::mutex lock_;
    bool flag_ = false;
};
