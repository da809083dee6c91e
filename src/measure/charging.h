#pragma once
// Charging what a walk meets through the run's Dedupe: hard links once and, on file systems that
// can share blocks, shared physical ranges once. Files elsewhere take the plain path, lookup-free.

#include "measure/dedupe.h"
#include "measure/dir_listing.h"
#include "measure/extents.h"

namespace Charging {

// One open folder whose files are being charged.
struct Folder {
    int fd = -1;
    qint32 device = 0;
    bool sharing = false;  // its file system can share blocks
};

inline Folder folder(Dedupe& dedupe, int fd, const DirListing::Stat& self) {
    return {fd, self.device, dedupe.canShare(self.device, fd)};
}

// The open folder's own blocks, charged once per run.
inline qint64 ownBlocks(Dedupe& dedupe, const DirListing::Stat& self) {
    return dedupe.chargeFolder(self.device, self.fileID, self.ownBlocks);
}

// A file worth reading the extents of; `shares` is set when it shares blocks with other files.
qint64 sharedFile(Dedupe& dedupe, const Folder& folder, const char* name, const DirListing::Stat& st, bool& shares);

inline qint64 file(Dedupe& dedupe, const Folder& folder, const char* name, const DirListing::Stat& st, bool& shares) {
    if (!folder.sharing || !Extents::worthLooking(st.allocated, st.size) || st.device != folder.device)
        return dedupe.chargeFile(st.device, st.fileID, st.links, st.allocated);
    return sharedFile(dedupe, folder, name, st, shares);
}

}  // namespace Charging
