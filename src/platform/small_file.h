#pragma once
// Reading a small text file of the system or of the home (a /proc entry, a settings file) by its
// path's own bytes.

#include <QByteArray>
#include <QString>
#include <optional>

namespace SmallFile {

// The file's first `limit` bytes; nothing when it cannot be opened or read.
std::optional<QByteArray> read(const QString& path, qsizetype limit = 1 << 20);

}  // namespace SmallFile
