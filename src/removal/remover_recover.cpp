// Taking into History the items that were moved just before an interruption: their info files
// name the entry they belong to, so they are found again even when the last save never happened.

#include <fcntl.h>
#include <sys/stat.h>

#include <QMap>
#include <ctime>
#include <vector>

#include "core/checked.h"
#include "core/home.h"
#include "core/paths.h"
#include "measure/walker.h"
#include "removal/dirs.h"
#include "removal/remover.h"
#include "removal/safety.h"
#include "removal/trash_dirs.h"
#include "removal/trash_info.h"

namespace {

const QByteArray infoSuffix = ".trashinfo";
// An info file is at most a few hundred bytes; a bigger one is not Quarle's.
constexpr qsizetype maxInfoSize = 64 * 1024;
// An info file without its item may belong to a move in progress elsewhere; only older ones go.
constexpr time_t abandonedAfterSeconds = 60;

std::optional<QByteArray> readInfo(int infoFd, const QByteArray& name, struct stat& st) {
    const UniqueFd fd(::openat(infoFd, name.constData(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    if (!fd || ::fstat(fd.get(), &st) != 0 || !S_ISREG(st.st_mode) || st.st_size > maxInfoSize) return std::nullopt;
    QByteArray text(st.st_size, '\0');
    const ssize_t n = ::read(fd.get(), text.data(), std::size_t(text.size()));
    if (n != ssize_t(text.size())) return std::nullopt;
    return text;
}

// Where an item of Quarle's may have come from: inside home, an app straight in /Applications, or
// (in a top-folder Trash) inside that file system.
bool plausibleOrigin(const QString& original, const TrashCan& can, const QString& realHome) {
    if (!can.isHome()) return Paths::isWithin(original, can.topdir) && original != can.topdir;
    const auto inside = [&](const QString& folder) { return Paths::isWithin(original, folder) && original != folder; };
    return inside(Home::path()) || inside(realHome) ||
           (Paths::parentOf(original) == QLatin1String("/Applications") && original.endsWith(QLatin1String(".app")));
}

// The Trash folders that may hold Quarle's items: the home Trash and those History points into.
std::vector<TrashCan> trashesToSearch(const QList<HistoryEntry>& entries) {
    std::vector<TrashCan> cans;
    QSet<QString> roots;
    const auto add = [&](std::optional<TrashCan> can) {
        if (can && !roots.contains(can->root)) {
            roots.insert(can->root);
            cans.push_back(std::move(*can));
        }
    };
    add(TrashDirs::home(false));
    QSet<QString> folders;
    for (const HistoryEntry& e : entries)
        for (const HistoryEntry::Moved& m : e.moved) {
            const QString filesDir = Paths::parentOf(m.trashed);
            if (!folders.contains(filesDir)) {
                folders.insert(filesDir);
                add(TrashDirs::holding(m.trashed));
            }
        }
    return cans;
}

}  // namespace

namespace Remover {

int recoverInterrupted(HistoryStore& store) {
    const QList<HistoryEntry> entries = store.entries();
    QSet<QString> recorded;
    for (const HistoryEntry& e : entries)
        for (const HistoryEntry::Moved& m : e.moved) recorded.insert(m.trashed);

    const QString realHome = Safety::realPath(Home::path()).value_or(Home::path());  // info files hold real paths
    QMap<QUuid, QList<HistoryEntry::Moved>> found;
    QMap<QUuid, QDateTime> firstDate;
    for (const TrashCan& can : trashesToSearch(entries)) {
        for (const QByteArray& infoName : Dirs::namesIn(can.info.get())) {
            if (!infoName.endsWith(infoSuffix) || infoName.size() == infoSuffix.size()) continue;
            const QByteArray item = infoName.chopped(infoSuffix.size());
            const QString trashed = can.root + QStringLiteral("/files/") + Paths::fromBytes(item);
            if (recorded.contains(trashed) || !TrashDirs::isItemPath(trashed)) continue;  // "..trashinfo" names no item
            struct stat infoStat;
            const std::optional<QByteArray> text = readInfo(can.info.get(), infoName, infoStat);
            if (!text) continue;
            const std::optional<TrashInfo::Parsed> info = TrashInfo::parse(*text, can.base());
            if (!info || info->entry.isNull() || !TrashDirs::isOriginalPath(info->original) || !plausibleOrigin(info->original, can, realHome)) continue;  // not Quarle's
            struct stat itemStat;
            if (::fstatat(can.files.get(), item.constData(), &itemStat, AT_SYMLINK_NOFOLLOW) != 0) {
                // Written just before an interruption, the move never happened: the item stayed put.
                if (std::time(nullptr) - infoStat.st_mtime > abandonedAfterSeconds)
                    ::unlinkat(can.info.get(), infoName.constData(), 0);
                continue;
            }
            found[info->entry].append(movedItem(info->original, trashed, Walker::size(trashed, true).bytes,
                                                identityAt(can.files.get(), item)));
            if (info->deleted && !firstDate.contains(info->entry)) firstDate[info->entry] = info->deleted->toUTC();
        }
    }

    int adopted = 0;
    for (auto it = found.cbegin(); it != found.cend(); ++it) {
        std::optional<HistoryEntry> entry = store.current(it.key());
        if (entry && entry->state != HistoryEntry::State::inTrash) continue;  // settled since; left to the user
        const bool isNew = !entry;
        if (isNew) {
            entry.emplace();
            entry->id = it.key();
            entry->date = firstDate.value(it.key(), QDateTime::currentDateTimeUtc());
            entry->date = QDateTime::fromSecsSinceEpoch(entry->date.toSecsSinceEpoch(), Qt::UTC);
            entry->title = QStringLiteral("Moved just before an interruption");
        }
        for (const HistoryEntry::Moved& m : it.value()) {
            entry->moved.append(m);
            entry->bytes = Checked::add(entry->bytes, m.bytes);
        }
        adopted += int(it.value().size());
        if (isNew)
            store.add(*entry);
        else
            store.update(*entry);
    }
    return adopted;
}

}  // namespace Remover
