#pragma once
// File names on Linux are bytes. Quarle carries paths as QString, with every byte that is not
// part of valid UTF-8 kept as a lone surrogate U+DC80..U+DCFF, so that any name converts back to
// exactly the bytes it had. All conversions between the file system and QString go through here.

#include <QByteArray>
#include <QString>
#include <optional>

namespace Paths {

QString fromBytes(const char* bytes, qsizetype size);
QString fromBytes(const QByteArray& bytes);
QByteArray toBytes(const QString& path);

// True when the path holds bytes that were not valid UTF-8 on disk.
bool hasRawBytes(const QString& path);

// Quarle's path standardising: "~" and "~/" expanded to `home`, "." removed, ".." removing the
// component before it, duplicate and trailing slashes removed. A relative path stays relative.
QString standardize(const QString& path, const QString& home);

// An absolute path with every ".." resolved as the kernel does: a ".." after a link means the
// parent of the link's target, so the part up to the last ".." is resolved on disk. Nothing when
// that part does not exist. A path without ".." is only standardised.
std::optional<QString> resolveDotDot(const QString& path);

// Last component and parent of an absolute, standardised path ("/" has parent "/").
QString lastComponent(const QString& path);
QString parentOf(const QString& path);

// True when `path` equals `folder` or lies inside it (a component boundary, not a text prefix).
bool isWithin(const QString& path, const QString& folder);

}  // namespace Paths
