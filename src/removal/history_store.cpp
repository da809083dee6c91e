#include "removal/history_store.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QMutexLocker>
#include <cerrno>
#include <ctime>

#include "core/home.h"
#include "core/paths.h"
#include "core/record_json.h"
#include "removal/atomic_file.h"
#include "removal/dirs.h"

namespace {

constexpr time_t staleAfterSeconds = 60;

// The whole file, or nothing when it cannot be read (`missing` tells apart a file not there).
std::optional<QByteArray> readAll(const QString& path, bool& missing) {
    missing = false;
    // Never blocks on a pipe or device put in its place: anything but a plain file is damaged.
    const UniqueFd fd(::open(Paths::toBytes(path).constData(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    if (!fd) {
        missing = errno == ENOENT;
        return std::nullopt;
    }
    struct stat st;
    if (::fstat(fd.get(), &st) != 0 || !S_ISREG(st.st_mode)) return std::nullopt;
    QByteArray bytes;
    char buf[1 << 16];
    for (;;) {
        const ssize_t n = ::read(fd.get(), buf, sizeof buf);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return std::nullopt;
        if (n == 0) return bytes;
        bytes.append(buf, n);
    }
}

// Keeps a damaged history beside the new one, never replacing an earlier one kept the same way.
void moveAside(const QString& path) {
    const QString folder = Paths::parentOf(path);
    const QString stamp = QString::number(QDateTime::currentSecsSinceEpoch());
    for (int n = 1; n < 100; ++n) {
        const QString name = QStringLiteral("history.unreadable-") + stamp +
                             (n > 1 ? QStringLiteral("-") + QString::number(n) : QString()) + QStringLiteral(".json");
        const QByteArray target = Paths::toBytes(folder + QLatin1Char('/') + name);
        if (::renameat2(AT_FDCWD, Paths::toBytes(path).constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) == 0 ||
            errno != EEXIST)
            return;
    }
}

// Sizes no disk could give (negative, or adding up past 64 bits) mark a damaged file. Paths are
// checked where they are acted on, so one odd path does not put the whole history aside.
bool plausible(const QList<HistoryEntry>& list) {
    qint64 all = 0;
    for (const HistoryEntry& e : list) {
        if (e.bytes < 0 || __builtin_add_overflow(all, e.bytes, &all)) return false;
        qint64 sum = 0;
        for (const HistoryEntry::Moved& m : e.moved)
            if (m.bytes < 0 || __builtin_add_overflow(sum, m.bytes, &sum))
                return false;
    }
    return true;
}

// A save stopped by a crash leaves its temporary file; one that old belongs to no save in progress.
void removeStaleTemporaries(const QString& path) {
    const UniqueFd dir(::open(Paths::toBytes(Paths::parentOf(path)).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!dir) return;
    const QByteArray prefix = Paths::toBytes(Paths::lastComponent(path)) + ".tmp-";
    for (const QByteArray& name : Dirs::namesIn(dir.get())) {
        struct stat st;
        if (name.startsWith(prefix) && ::fstatat(dir.get(), name.constData(), &st, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(st.st_mode) && std::time(nullptr) - st.st_mtime > staleAfterSeconds)
            ::unlinkat(dir.get(), name.constData(), 0);
    }
}

// An exclusive lock on the file beside the history, held while the descriptor lives. Without one (a
// folder Quarle cannot write) the change goes ahead: the write fails anyway.
UniqueFd lockBeside(const QString& path) {
    UniqueFd fd(::open(Paths::toBytes(path + QStringLiteral(".lock")).constData(),
                       O_RDWR | O_CREAT | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC, 0600));
    struct stat st;
    if (fd && (::fstat(fd.get(), &st) != 0 || !S_ISREG(st.st_mode))) fd.reset();  // a pipe or device: no lock
    if (fd)
        while (::flock(fd.get(), LOCK_EX) != 0 && errno == EINTR) {
        }
    return fd;
}

}  // namespace

HistoryStore::HistoryStore(QString file) : url_(std::move(file)) {
    QMutexLocker locker(&lock_);
    removeStaleTemporaries(url_);
    read();
}

QString HistoryStore::defaultFile() { return Home::dataFolder() + QStringLiteral("/Quarle/history.json"); }

bool HistoryStore::Stamp::operator==(const Stamp& o) const {
    const auto same = [](const timespec& a, const timespec& b) { return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec; };
    return dev == o.dev && ino == o.ino && size == o.size && same(mtime, o.mtime) && same(ctime, o.ctime);
}

std::optional<HistoryStore::Stamp> HistoryStore::stampOf(const QString& path) {
    struct stat st;
    if (::stat(Paths::toBytes(path).constData(), &st) != 0) return std::nullopt;
    return Stamp{st.st_dev, st.st_ino, st.st_size, st.st_mtim, st.st_ctim};
}

void HistoryStore::read() const {
    const std::optional<Stamp> before = stampOf(url_);
    bool missing = false;
    const std::optional<QByteArray> bytes = readAll(url_, missing);
    if (missing) return;
    std::optional<QList<HistoryEntry>> decoded;
    if (bytes)
        if (const auto json = parseJson(*bytes)) decoded = decodeJsonList<HistoryEntry>(*json);
    if (decoded && plausible(*decoded)) {
        list_ = std::move(*decoded);
        known_ = before;
    } else {
        moveAside(url_);
    }
}

void HistoryStore::refresh() const {
    const std::optional<Stamp> now = stampOf(url_);
    // Gone since: this store's list is all there is, and its next change writes it again.
    if (!now || now == known_) return;
    read();
}

QList<HistoryEntry> HistoryStore::entries() const {
    QMutexLocker locker(&lock_);
    refresh();
    return list_;
}

std::optional<HistoryEntry> HistoryStore::current(const QUuid& id) const {
    QMutexLocker locker(&lock_);
    refresh();
    for (const HistoryEntry& e : list_)
        if (e.id == id) return e;
    return std::nullopt;
}

bool HistoryStore::change(const std::function<void(QList<HistoryEntry>&)>& edit) {
    QMutexLocker locker(&lock_);
    Dirs::makeDirs(Paths::parentOf(url_), 0700);
    const UniqueFd held = lockBeside(url_);
    refresh();
    edit(list_);
    return save();
}

bool HistoryStore::add(const HistoryEntry& entry) {
    return change([&](QList<HistoryEntry>& list) { list.prepend(entry); });
}

bool HistoryStore::edit(const QUuid& id, const std::function<void(HistoryEntry&)>& apply) {
    return change([&](QList<HistoryEntry>& list) {
        for (HistoryEntry& e : list)
            if (e.id == id) return apply(e);
    });
}

bool HistoryStore::update(const HistoryEntry& entry) {
    return change([&](QList<HistoryEntry>& list) {
        auto it = std::find_if(list.begin(), list.end(), [&](const HistoryEntry& e) { return e.id == entry.id; });
        if (it != list.end())
            *it = entry;
        else
            list.prepend(entry);
    });
}

int HistoryStore::saves() const {
    QMutexLocker locker(&lock_);
    return saves_;
}

bool HistoryStore::save() {
    if (!AtomicFile::write(url_, text_.of(list_))) return false;
    ++saves_;
    known_ = stampOf(url_);
    return true;
}
