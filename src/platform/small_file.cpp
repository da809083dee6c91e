#include "platform/small_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "core/paths.h"

namespace SmallFile {

std::optional<QByteArray> read(const QString& path, qsizetype limit) {
    const int fd = ::open(Paths::toBytes(path).constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (fd < 0) return std::nullopt;
    QByteArray text;
    char buffer[16384];
    bool ok = true;
    while (text.size() < limit) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) ok = false;
        if (n <= 0) break;
        text.append(buffer, qsizetype(n));
    }
    ::close(fd);
    if (!ok) return std::nullopt;
    return text.left(limit);
}

}  // namespace SmallFile
