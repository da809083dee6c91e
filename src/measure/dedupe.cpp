#include "measure/dedupe.h"

#include <algorithm>

#include "core/checked.h"

namespace {

std::atomic<quint64> runs{0};

using RangeSet = std::map<quint64, quint64>;

// Adds [start, end) to the disjoint set, merging what it touches; returns the bytes not yet in it.
// The parts already in it go into `again` when given.
quint64 insert(RangeSet& set, quint64 start, quint64 end, RangeSet* again = nullptr) {
    auto it = set.upper_bound(start);
    if (it != set.begin() && std::prev(it)->second >= start) --it;
    quint64 covered = 0;
    quint64 from = start;
    quint64 to = end;
    while (it != set.end() && it->first <= end) {
        const quint64 lo = std::max(start, it->first);
        const quint64 hi = std::min(end, it->second);
        if (hi > lo) {
            covered += hi - lo;
            if (again) insert(*again, lo, hi);
        }
        from = std::min(from, it->first);
        to = std::max(to, it->second);
        it = set.erase(it);
    }
    set.emplace_hint(it, from, to);
    return (end - start) - covered;
}

}  // namespace

Dedupe::Dedupe() : run_(++runs) {}

bool Dedupe::firstSight(qint32 device, quint64 fileID) {
    std::lock_guard guard(lock_);
    return links_.insert({device, fileID}).second;
}

qint64 Dedupe::chargeShared(qint32 device, qint64 allocated, const std::vector<Extents::Range>& shared) {
    quint64 sharedBytes = 0;
    for (const Extents::Range& r : shared) sharedBytes += r.end - r.start;
    const qint64 own = allocated - qint64(std::min<quint64>(sharedBytes, quint64(std::max<qint64>(allocated, 0))));
    quint64 fresh = 0;
    {
        std::lock_guard guard(lock_);
        RangeSet& set = ranges_[device];
        RangeSet* again = repeats_ ? &again_[device] : nullptr;
        for (const Extents::Range& r : shared) fresh += insert(set, r.start, r.end, again);
    }
    return Checked::add(own, qint64(std::min<quint64>(fresh, quint64(allocated - own))));
}

bool Dedupe::canShare(qint32 device, int fd) {
    struct Last {
        quint64 run = 0;
        qint32 device = 0;
        bool answer = false;
    };
    thread_local Last last;
    if (last.run == run_ && last.device == device) return last.answer;
    bool answer = false;
    {
        std::lock_guard guard(lock_);
        const auto it = sharing_.find(device);
        if (it != sharing_.end()) answer = it->second;
        else answer = sharing_[device] = Extents::canShare(fd);
    }
    last = {run_, device, answer};
    return answer;
}

std::size_t Dedupe::rangeCount() {
    std::lock_guard guard(lock_);
    std::size_t n = 0;
    for (const auto& [device, set] : ranges_) n += set.size();
    return n;
}

qint64 Dedupe::heldOnce() {
    const auto bytes = [](const RangeSet& set) {
        quint64 n = 0;
        for (const auto& [start, end] : set) n += end - start;
        return n;
    };
    std::lock_guard guard(lock_);
    quint64 once = 0;
    for (const auto& [device, set] : ranges_) once += bytes(set) - bytes(again_[device]);
    return qint64(once);
}

qint64 Dedupe::charge(const Walker::Entry& e) {
    if (mayMeetTwice(e.links)) {
        if (!firstSight(e.device, e.fileID)) return 0;  // a further link
        if (!e.mayShare) return e.allocated;
    }
    if (!e.mayShare) return e.allocated;
    // A clone: the first of its family pays for the shared blocks, later ones for their own.
    const qint64 own = std::clamp<qint64>(e.privateSize, 0, e.allocated);
    std::lock_guard guard(lock_);
    return clones_.insert(e.cloneID).second ? e.allocated : own;
}
