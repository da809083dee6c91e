#include "measure/charging.h"

namespace Charging {

qint64 sharedFile(Dedupe& dedupe, const Folder& folder, const char* name, const DirListing::Stat& st, bool& shares) {
    if (dedupe.mayMeetTwice(st.links) && !dedupe.firstSight(st.device, st.fileID)) return 0;
    thread_local std::vector<Extents::Range> ranges;
    if (!Extents::shared(folder.fd, name, ranges) || ranges.empty()) return st.allocated;
    shares = true;
    return dedupe.chargeShared(st.device, st.allocated, ranges);
}

}  // namespace Charging
