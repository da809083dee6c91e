#include "removal/history_store.h"

#include <fcntl.h>
#include <stdio.h>
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
    const UniqueFd fd(::open(Paths::toBytes(path).constData(), O_RDONLY | O_CLOEXEC));
    if (!fd) {
        missing = errno == ENOENT;
        return std::nullopt;
    }
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

// Sizes no disk could give (negative, or adding up past 64 bits) mark a damaged file.
bool plausible(const QList<HistoryEntry>& list) {
    qint64 all = 0;
    for (const HistoryEntry& e : list) {
        if (e.bytes < 0 || __builtin_add_overflow(all, e.bytes, &all)) return false;
        qint64 sum = 0;
        for (const HistoryEntry::Moved& m : e.moved)
            if (m.bytes < 0 || __builtin_add_overflow(sum, m.bytes, &sum)) return false;
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

}  // namespace

HistoryStore::HistoryStore(QString file) : url_(std::move(file)) { load(); }

QString HistoryStore::defaultFile() { return Home::dataFolder() + QStringLiteral("/Quarle/history.json"); }

void HistoryStore::load() {
    QMutexLocker locker(&lock_);
    removeStaleTemporaries(url_);
    bool missing = false;
    const std::optional<QByteArray> bytes = readAll(url_, missing);
    if (missing) return;
    std::optional<QList<HistoryEntry>> decoded;
    if (bytes)
        if (const auto json = parseJson(*bytes)) decoded = decodeJsonList<HistoryEntry>(*json);
    if (decoded && plausible(*decoded))
        list_ = std::move(*decoded);
    else
        moveAside(url_);
}

QList<HistoryEntry> HistoryStore::entries() const {
    QMutexLocker locker(&lock_);
    return list_;
}

std::optional<HistoryEntry> HistoryStore::current(const QUuid& id) const {
    QMutexLocker locker(&lock_);
    for (const HistoryEntry& e : list_)
        if (e.id == id) return e;
    return std::nullopt;
}

void HistoryStore::add(const HistoryEntry& entry) {
    QMutexLocker locker(&lock_);
    list_.prepend(entry);
    save();
}

void HistoryStore::update(const HistoryEntry& entry) {
    QMutexLocker locker(&lock_);
    auto it = std::find_if(list_.begin(), list_.end(), [&](const HistoryEntry& e) { return e.id == entry.id; });
    if (it != list_.end())
        *it = entry;
    else
        list_.prepend(entry);
    save();
}

int HistoryStore::saves() const {
    QMutexLocker locker(&lock_);
    return saves_;
}

void HistoryStore::save() {
    Dirs::makeDirs(Paths::parentOf(url_), 0700);
    if (AtomicFile::write(url_, text_.of(list_))) ++saves_;
}
