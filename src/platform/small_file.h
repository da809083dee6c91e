#pragma once
// Reading the small text files Quarle learns from: desktop entries, Flatpak metadata, systemd units,
// property lists, settings files, /proc entries. A file in their place that is huge, a folder, a
// named pipe or a device is no such file, and reading it must neither hang nor fill memory.

#include <QByteArray>
#include <QString>
#include <optional>

namespace SmallFile {

// The whole file, following symbolic links; nothing when it cannot be opened, is not a regular
// file or holds more than `largest` bytes. Files that report no size (/proc) are read to their end.
std::optional<QByteArray> read(const QString& path, qint64 largest = 1024 * 1024);

// Up to `count` bytes from the start of a regular file (fewer when it is shorter); nothing when it
// cannot be opened or is not a regular file.
std::optional<QByteArray> head(const QString& path, qint64 count);

}  // namespace SmallFile
