#pragma once
// Finding and opening the Trash folders of the FreeDesktop.org Trash: the home Trash, and for an
// item on another file system the Trash at the top of that file system. A Trash folder that is a
// link, belongs to someone else or may be changed by others is never used.

#include <sys/types.h>

#include <QString>
#include <QStringList>
#include <optional>

#include "removal/dirs.h"

// One Trash folder, opened: its files/ and info/ halves are held by descriptor.
struct TrashCan {
    QString root;    // <data>/Trash, $topdir/.Trash/$uid or $topdir/.Trash-$uid
    QString topdir;  // empty for the home Trash, whose info files hold absolute paths
    dev_t device = 0;
    UniqueFd files;
    UniqueFd info;

    bool isHome() const { return topdir.isEmpty(); }
    // The path an info file records for `original`: absolute at home, relative to topdir elsewhere.
    QString infoPath(const QString& original) const;
    // The folder a relative info path starts from.
    QString base() const;
};

namespace TrashDirs {

// The home Trash (Home::trashFolder()); with `create` it and its parents are made 0700 when missing.
std::optional<TrashCan> home(bool create);

// The Trash at the top of the file system mounted at `topdir`: $topdir/.Trash/$uid when .Trash is
// a real folder with the sticky bit, else $topdir/.Trash-$uid.
std::optional<TrashCan> top(const QString& topdir, bool create);

// The mount point of the file system that holds `path` (an absolute, resolved path).
QString mountPointOf(const QString& path);

// The Trash whose files/ folder directly holds `trashed`, opened; nothing when `trashed` lies in
// no Trash that Quarle recognises.
std::optional<TrashCan> holding(const QString& trashed);

// True for a path read from a file (History, an info file) that names exactly one item directly
// inside a Trash's files/ folder: absolute, standardised, its name neither empty, "." nor "..".
bool isItemPath(const QString& trashed);
// True for an absolute, standardised path other than "/": a place an item can be put back to.
bool isOriginalPath(const QString& original);

// Every mount point of this process's view, from /proc/self/mountinfo.
QStringList mountPoints();
// The first of `points` that lies strictly inside the folder `path` (absolute, resolved).
std::optional<QString> mountWithin(const QString& path, const QStringList& points);

// This user's id as it appears in the names of top-folder Trash folders.
QString uidText();

}  // namespace TrashDirs
