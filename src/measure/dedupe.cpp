#include "measure/dedupe.h"

#include <algorithm>

qint64 Dedupe::chargeLinked(qint32 device, quint64 fileID, qint64 allocated) {
    std::lock_guard guard(lock_);
    return links_.insert({device, fileID}).second ? allocated : 0;
}

qint64 Dedupe::charge(const Walker::Entry& e) {
    if (e.links >= 2) {
        {
            std::lock_guard guard(lock_);
            if (!links_.insert({e.device, e.fileID}).second) return 0;  // a further link
        }
        if (!e.mayShare) return e.allocated;
    }
    if (!e.mayShare) return e.allocated;
    // A clone: the first of its family pays for the shared blocks, later ones for their own.
    const qint64 own = std::clamp<qint64>(e.privateSize, 0, e.allocated);
    std::lock_guard guard(lock_);
    return clones_.insert(e.cloneID).second ? e.allocated : own;
}
