#include "platform/small_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/paths.h"

namespace {

// Reads at most `limit` bytes of a regular file; `wholeOnly` refuses a file larger than the limit.
std::optional<QByteArray> readUpTo(const QString& path, qint64 limit, bool wholeOnly) {
    // Non-blocking, so that a named pipe in place of the file cannot hang the caller.
    const int fd = ::open(Paths::toBytes(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return std::nullopt;
    struct stat st;
    std::optional<QByteArray> out;
    if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && !(wholeOnly && st.st_size > limit)) {
        QByteArray data(qsizetype(std::min<qint64>(st.st_size, limit)), Qt::Uninitialized);
        qsizetype got = 0;
        while (got < data.size()) {
            const ssize_t n = ::read(fd, data.data() + got, size_t(data.size() - got));
            if (n <= 0) break;
            got += n;
        }
        data.truncate(got);
        out = std::move(data);
    }
    ::close(fd);
    return out;
}

}  // namespace

namespace SmallFile {

std::optional<QByteArray> read(const QString& path, qint64 largest) { return readUpTo(path, largest, true); }

std::optional<QByteArray> head(const QString& path, qint64 count) { return readUpTo(path, count, false); }

}  // namespace SmallFile
