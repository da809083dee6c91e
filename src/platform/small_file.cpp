#include "platform/small_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "core/paths.h"

namespace {

// Reads a regular file up to `limit` bytes; with `wholeOnly`, a file longer than that is refused.
std::optional<QByteArray> readUpTo(const QString& path, qint64 limit, bool wholeOnly) {
    // Non-blocking, so that a named pipe in place of the file cannot hang the caller.
    const int fd = ::open(Paths::toBytes(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) return std::nullopt;
    struct stat st;
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return std::nullopt;
    }
    // The size is only a hint: /proc files report 0 and are read until they end.
    QByteArray text;
    char buffer[16384];
    bool ok = true;
    while (text.size() <= limit) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) ok = false;
        if (n <= 0) break;
        text.append(buffer, qsizetype(n));
    }
    ::close(fd);
    if (!ok || (wholeOnly && text.size() > limit)) return std::nullopt;
    text.truncate(qsizetype(std::min<qint64>(text.size(), limit)));
    return text;
}

}  // namespace

namespace SmallFile {

std::optional<QByteArray> read(const QString& path, qint64 largest) { return readUpTo(path, largest, true); }

std::optional<QByteArray> head(const QString& path, qint64 count) { return readUpTo(path, count, false); }

}  // namespace SmallFile
