#pragma once
// Building fixture trees byte for byte: odd names, sparse files, links, very deep chains.

#include <QByteArray>
#include <QString>
#include <sys/types.h>

namespace Files {

QByteArray bytes(const QString& path);

// Creates the folder and its parents.
void makeDirs(const QString& path);
// Writes `size` bytes of real data (every block allocated).
void write(const QString& path, qint64 size, char fill = 'x');
void writeText(const QString& path, const QByteArray& text);
// A file of logical length `length` with only `written` bytes of data at its start.
void writeSparse(const QString& path, qint64 length, qint64 written);
void symlink(const QString& target, const QString& link);
void hardlink(const QString& existing, const QString& link);
// Sets the modification time, seconds since 1970.
void touch(const QString& path, qint64 seconds);

// st_blocks * 512 of the path itself (never following a link).
qint64 allocated(const QString& path);
bool exists(const QString& path);
// What `du -sB1` says of a tree, links and other mounts aside: each file's blocks once per inode,
// plus each folder's own blocks.
qint64 diskUsage(const QString& root);

// Removes a tree of any depth (also beyond PATH_MAX), restoring permissions on the way.
void removeTree(const QString& path);

// Creates a chain of `levels` nested folders named "d" under `root`, each holding a file of
// `fileSize` bytes, without ever building a long path. Returns the bytes allocated, the folders' own
// blocks with them.
qint64 makeDeepChain(const QString& root, int levels, qint64 fileSize);

}  // namespace Files
