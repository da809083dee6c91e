#include "measure/walk_types.h"

#include <sys/sysmacros.h>

#include "core/checked.h"

void WalkResult::add(const WalkResult& o) {
    bytes = Checked::add(bytes, o.bytes);
    files = Checked::add(files, o.files);
    denied = Checked::add(denied, o.denied);
    if (o.newest && (!newest || *o.newest > *newest)) newest = o.newest;
    shares = shares || o.shares;
}

void Tally::add(const Tally& o) {
    bytes = Checked::add(bytes, o.bytes);
    files = Checked::add(files, o.files);
    denied = Checked::add(denied, o.denied);
    seen(o.newest);
    shares = shares || o.shares;
}

WalkResult Tally::result() const {
    WalkResult r{bytes, files, denied, std::nullopt, shares};
    if (newest != noDate) r.newest = dateFromSeconds(newest);
    return r;
}

qint32 deviceNumber(unsigned major, unsigned minor) {
    return qint32((minor & 0xffu) | (major << 8) | ((minor & ~0xffu) << 12));
}

qint32 deviceNumber(quint64 statDevice) {
    return deviceNumber(::major(statDevice), ::minor(statDevice));
}

QDateTime dateFromSeconds(qint64 seconds) { return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC); }
