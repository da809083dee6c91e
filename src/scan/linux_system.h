#pragma once
// What a scan of a Linux-shaped home adds: where its XDG user folders are, and how the root file
// system's own folders share the disk the home is on (the counterpart of macOS's volumes).

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>

#include "measure/progress.h"
#include "measure/walk_types.h"

struct LinuxSystem {
    QMap<QString, QString> userDirs;  // XDG user folders: key ("PICTURES") → absolute path
    bool measured = false;  // the system's own folders were looked at (never for a fixture home alone)
    QMap<QString, qint64> folders;  // bytes by the folder's name on the system ("/usr"), on the home's disk
    QStringList partial;  // folders of which some could not be read
    std::optional<qint64> journal;  // the systemd journal's own figure
    qint64 swapFiles = 0;  // swap files on the home's file system
    qint64 reserved = 0;  // blocks only the administrator may use

    bool operator==(const LinuxSystem&) const = default;
};

namespace Scanner {

// One row of the Linux disk breakdown and the system folders measured for it.
struct SystemArea {
    QString id;  // "system", "logs", "packages", "flatpak", "snaps", "temp"
    QStringList folders;  // as named on the system
};
const QList<SystemArea>& systemAreas();

// A home is Linux-shaped when it has no Library folder but has a folder a Linux session makes at
// the first login (.config, .local or .cache): every Mac home has a Library, and a bare folder stays
// what it always was.
bool linuxShaped(const QString& home);

// Sizes of the system folders found under `systemRoot` ("" for /) on the home's file system, with
// the swap files of `systemRoot`/proc/swaps and the journal's figure (user folders and reserved
// space are the caller's). Folders holding the home are left out, so nothing is counted twice.
LinuxSystem measureSystem(const QString& home, const QString& systemRoot, WalkProgress& progress,
                          const Cancelled& cancelled);
// The swap files among `swaps` (the text of /proc/swaps) that lie on device `device`, in bytes,
// leaving out those inside `skip`.
qint64 swapFilesOn(const QByteArray& swaps, const QString& systemRoot, std::optional<qint32> device,
                   const QStringList& skip);

}  // namespace Scanner
