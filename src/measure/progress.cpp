#include "measure/progress.h"

#include "core/checked.h"

void WalkProgress::add(qint64 files, qint64 bytes) {
    std::lock_guard guard(lock_);
    n_ = Checked::add(n_, files);
    b_ = Checked::add(b_, bytes);
}

qint64 WalkProgress::files() const {
    std::lock_guard guard(lock_);
    return n_;
}

qint64 WalkProgress::bytes() const {
    std::lock_guard guard(lock_);
    return b_;
}

void ScanCancel::cancel() {
    std::lock_guard guard(lock_);
    flag_ = true;
}

bool ScanCancel::stopped() const {
    std::lock_guard guard(lock_);
    return flag_;
}
