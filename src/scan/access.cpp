#include "scan/access.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "core/paths.h"
#include "measure/walker.h"
#include "scan/scanner.h"

namespace Access {

std::optional<bool> fullDisk() { return fullDisk(Scanner::trashFiles()); }

std::optional<bool> fullDisk(const QString& trashFiles) {
    const int fd = ::open(Paths::toBytes(trashFiles).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        if (errno == ENOENT) return true;  // nothing there to be kept from
        if (errno == EPERM || errno == EACCES) return false;
        return std::nullopt;
    }
    ::close(fd);
    return Walker::list(trashFiles, std::nullopt, [](const Walker::Entry&) {});
}

}  // namespace Access
