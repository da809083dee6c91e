#pragma once
// Writing a file so that a crash at any moment leaves either the old content or the new one.

#include <QByteArray>
#include <QString>

namespace AtomicFile {

// Writes `bytes` to a new file beside `path`, flushes it to disk, renames it over `path` and
// flushes the folder. False (and `path` untouched) when any step fails.
bool write(const QString& path, const QByteArray& bytes);

}  // namespace AtomicFile
