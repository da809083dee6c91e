#include "removal/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QRandomGenerator>
#include <cerrno>
#include <cstdio>

#include "core/paths.h"
#include "removal/dirs.h"

namespace AtomicFile {

bool write(const QString& path, const QByteArray& bytes) {
    const QByteArray target = Paths::toBytes(path);
    const QByteArray folder = Paths::toBytes(Paths::parentOf(path));
    QByteArray temporary;
    UniqueFd fd;
    for (int tries = 0; tries < 100 && !fd; ++tries) {
        temporary = target + ".tmp-" + QByteArray::number(QRandomGenerator::global()->generate(), 36);
        fd = UniqueFd(::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!fd && errno != EEXIST) return false;
    }
    if (!fd) return false;
    qsizetype done = 0;
    bool ok = true;
    while (ok && done < bytes.size()) {
        const ssize_t n = ::write(fd.get(), bytes.constData() + done, std::size_t(bytes.size() - done));
        if (n < 0 && errno == EINTR) continue;
        ok = n > 0;
        if (ok) done += n;
    }
    ok = ok && ::fsync(fd.get()) == 0;
    fd.reset();
    if (!ok || ::rename(temporary.constData(), target.constData()) != 0) {
        ::unlink(temporary.constData());
        return false;
    }
    const UniqueFd dir(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir) ::fsync(dir.get());
    return true;
}

}  // namespace AtomicFile
