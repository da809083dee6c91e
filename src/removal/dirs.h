#pragma once
// Folder work on descriptors, so that a path swapped for a link between a check and a change can
// never send that change somewhere else.

#include <sys/types.h>
#include <unistd.h>

#include <QByteArray>
#include <QList>
#include <QString>

// An open file descriptor, closed when it goes.
class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : fd_(fd) {}
    UniqueFd(UniqueFd&& other) noexcept : fd_(other.release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        if (this != &other) reset(other.release());
        return *this;
    }
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;
    ~UniqueFd() { reset(); }

    int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }
    int release() {
        const int fd = fd_;
        fd_ = -1;
        return fd;
    }
    void reset(int fd = -1) {
        if (fd_ >= 0) ::close(fd_);
        fd_ = fd;
    }

private:
    int fd_ = -1;
};

namespace Dirs {

// Opens the folder at the absolute `path`. `trusted` (a folder that `path` lies in, "/" at the
// least) is opened as it stands, links included; every component after it is opened without
// following a link, so the descriptor is the folder that really lies at that path. With `create`,
// missing components are made with `mode` on the way. Invalid when that fails.
UniqueFd open(const QString& path, const QString& trusted = QStringLiteral("/"), bool create = false,
              mode_t mode = 0700);

// The same, starting from `trustedFd`, an open descriptor of the folder `trusted`.
UniqueFd openFrom(int trustedFd, const QString& trusted, const QString& path, bool create = false,
                  mode_t mode = 0700);

// The names in the folder `dirFd`, without "." and "..".
QList<QByteArray> namesIn(int dirFd);

// Creates the folder and every missing parent with `mode` (existing parents are left as they are).
bool makeDirs(const QString& path, mode_t mode);

// Removes `name` inside the folder `dirFd`: a file, a link (never followed) or a whole tree of any
// depth. False when something could not be removed.
bool removeAt(int dirFd, const QByteArray& name);

}  // namespace Dirs
