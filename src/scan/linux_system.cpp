#include "scan/linux_system.h"

#include <sys/stat.h>

#include <algorithm>

#include "core/checked.h"
#include "core/paths.h"
#include "measure/walker.h"
#include "platform/small_file.h"
#include "platform/system_figures.h"

namespace {

bool isFolder(const QString& path) {
    struct stat st;
    return ::lstat(Paths::toBytes(path).constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool within(const QString& path, const QStringList& folders) {
    return std::any_of(folders.cbegin(), folders.cend(), [&](const QString& f) { return Paths::isWithin(path, f); });
}

}  // namespace

namespace Scanner {

const QList<SystemArea>& systemAreas() {
    static const QList<SystemArea> areas{
        {QStringLiteral("system"), {QStringLiteral("/usr"), QStringLiteral("/opt"), QStringLiteral("/boot")}},
        {QStringLiteral("logs"), {QStringLiteral("/var/log")}},
        {QStringLiteral("packages"),
         {QStringLiteral("/var/cache/apt"), QStringLiteral("/var/cache/dnf"), QStringLiteral("/var/cache/yum"),
          QStringLiteral("/var/cache/pacman/pkg"), QStringLiteral("/var/cache/zypp")}},
        {QStringLiteral("flatpak"), {QStringLiteral("/var/lib/flatpak")}},
        // Only the snap files: /snap mounts the same files again, one mount per snap.
        {QStringLiteral("snaps"), {QStringLiteral("/var/lib/snapd/snaps")}},
        {QStringLiteral("temp"), {QStringLiteral("/tmp"), QStringLiteral("/var/tmp")}},
    };
    return areas;
}

bool linuxShaped(const QString& home) {
    if (isFolder(home + QStringLiteral("/Library"))) return false;
    for (const char* made : {"/.config", "/.local", "/.cache"})
        if (isFolder(home + QLatin1String(made))) return true;
    return false;
}

qint64 swapFilesOn(const QByteArray& swaps, const QString& systemRoot, std::optional<qint32> device,
                   const QStringList& skip) {
    qint64 sum = 0;
    for (const SystemFigures::SwapArea& area : SystemFigures::parseSwapAreas(swaps)) {
        // A partition is a disk of its own; only a file takes room on the file system.
        if (area.type != QLatin1String("file") || !area.path.startsWith(QLatin1Char('/'))) continue;
        const QString path = systemRoot + area.path;
        if (!device || Walker::device(path) != device || within(path, skip)) continue;
        sum = Checked::add(sum, Walker::size(path, false).bytes);
    }
    return sum;
}

LinuxSystem measureSystem(const QString& home, const QString& systemRoot, WalkProgress& progress,
                          const Cancelled& cancelled) {
    LinuxSystem s;
    s.measured = true;
    const std::optional<qint32> device = Walker::device(home);
    QStringList measured;
    for (const SystemArea& area : systemAreas()) {
        for (const QString& folder : area.folders) {
            if (cancelled && cancelled()) return s;
            const QString path = systemRoot + folder;
            // Another file system (a tmpfs /tmp, a separate /boot) takes nothing from this disk.
            if (!isFolder(path) || Walker::device(path) != device || Paths::isWithin(home, path)) continue;
            const WalkResult r = Walker::size(path, true, cancelled);
            progress.add(r.files, r.bytes);
            s.folders.insert(folder, r.bytes);
            if (r.denied > 0) s.partial.append(folder);
            measured.append(path);
        }
    }
    measured.append(home);
    if (const auto swaps = SmallFile::read(systemRoot + QStringLiteral("/proc/swaps")))
        s.swapFiles = swapFilesOn(*swaps, systemRoot, device, measured);
    if (s.folders.contains(QStringLiteral("/var/log")))
        s.journal = SystemFigures::journalUsage(systemRoot.isEmpty() ? QString() : systemRoot + QStringLiteral("/var/log/journal"));
    return s;
}

}  // namespace Scanner
