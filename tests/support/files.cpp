#include "support/files.h"

#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QProcess>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <utility>

#include "core/paths.h"

namespace {

[[noreturn]] void fail(const char* what, const QString& path) {
    std::perror(what);
    std::fprintf(stderr, "  on %s\n", Paths::toBytes(path).constData());
    std::abort();
}

void writeAll(int fd, qint64 size, char fill, const QString& path) {
    std::string block(64 * 1024, fill);
    while (size > 0) {
        const qint64 n = std::min<qint64>(size, qint64(block.size()));
        if (::write(fd, block.data(), std::size_t(n)) != n) fail("write", path);
        size -= n;
    }
}

}  // namespace

namespace Files {

QByteArray bytes(const QString& path) { return Paths::toBytes(path); }

void makeDirs(const QString& path) {
    const QByteArray p = bytes(path);
    for (qsizetype i = 1; i <= p.size(); ++i) {
        if (i < p.size() && p[i] != '/') continue;
        const QByteArray part = p.left(i);
        if (::mkdir(part.constData(), 0755) != 0 && errno != EEXIST) fail("mkdir", path);
    }
}

void write(const QString& path, qint64 size, char fill) {
    const int fd = ::open(bytes(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) fail("open", path);
    writeAll(fd, size, fill, path);
    ::fsync(fd);  // so the allocated blocks are final when measured
    ::close(fd);
}

void writeText(const QString& path, const QByteArray& text) {
    const int fd = ::open(bytes(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) fail("open", path);
    if (::write(fd, text.constData(), std::size_t(text.size())) != text.size()) fail("write", path);
    ::close(fd);
}

void writeSparse(const QString& path, qint64 length, qint64 written) {
    const int fd = ::open(bytes(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) fail("open", path);
    writeAll(fd, written, 's', path);
    if (::ftruncate(fd, length) != 0) fail("ftruncate", path);
    ::fsync(fd);
    ::close(fd);
}

void symlink(const QString& target, const QString& link) {
    if (::symlink(bytes(target).constData(), bytes(link).constData()) != 0) fail("symlink", link);
}

void hardlink(const QString& existing, const QString& link) {
    if (::link(bytes(existing).constData(), bytes(link).constData()) != 0) fail("link", link);
}

void touch(const QString& path, qint64 seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    if (::utimensat(AT_FDCWD, bytes(path).constData(), times, AT_SYMLINK_NOFOLLOW) != 0) fail("utimensat", path);
}

qint64 allocated(const QString& path) {
    struct stat st;
    if (::lstat(bytes(path).constData(), &st) != 0) return -1;
    return qint64(st.st_blocks) * 512;
}

bool exists(const QString& path) {
    struct stat st;
    return ::lstat(bytes(path).constData(), &st) == 0;
}

qint64 diskUsage(const QString& root) {
    static thread_local qint64 total;
    static thread_local std::set<std::pair<dev_t, ino_t>>* seen;
    std::set<std::pair<dev_t, ino_t>> here;
    total = 0;
    seen = &here;
    const auto visit = [](const char*, const struct stat* st, int, struct FTW*) {
        if ((S_ISREG(st->st_mode) || S_ISDIR(st->st_mode)) && seen->insert({st->st_dev, st->st_ino}).second)
            total += qint64(st->st_blocks) * 512;
        return 0;
    };
    if (::nftw(bytes(root).constData(), visit, 64, FTW_PHYS | FTW_MOUNT) != 0) fail("nftw", root);
    return total;
}

void removeTree(const QString& path) {
    if (!exists(path)) return;
    QProcess::execute(QStringLiteral("chmod"), {QStringLiteral("-R"), QStringLiteral("u+rwx"), path});
    QProcess::execute(QStringLiteral("rm"), {QStringLiteral("-rf"), QStringLiteral("--"), path});
}

qint64 makeDeepChain(const QString& root, int levels, qint64 fileSize) {
    makeDirs(root);
    int fd = ::open(bytes(root).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) fail("open", root);
    struct stat st;
    qint64 total = 0;
    std::string block(std::size_t(fileSize), 'd');
    for (int level = 0; level < levels; ++level) {
        const int f = ::openat(fd, "f", O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (f < 0 || ::write(f, block.data(), block.size()) != qint64(block.size())) fail("deep file", root);
        ::fsync(f);
        ::fstat(f, &st);
        total += qint64(st.st_blocks) * 512;
        ::close(f);
        if (::mkdirat(fd, "d", 0755) != 0) fail("mkdirat", root);
        ::fstat(fd, &st);  // the folder is complete: "f" and "d"
        total += qint64(st.st_blocks) * 512;
        const int next = ::openat(fd, "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(fd);
        if (next < 0) fail("openat", root);
        fd = next;
    }
    ::fstat(fd, &st);
    total += qint64(st.st_blocks) * 512;
    ::close(fd);
    return total;
}

}  // namespace Files
