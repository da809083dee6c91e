#pragma once
// The NAME.trashinfo files of the FreeDesktop.org Trash: where an item came from and when it was
// trashed. The path is kept as the bytes of the file name, percent-encoded.

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QUuid>
#include <optional>

namespace TrashInfo {

// Every byte outside A-Z a-z 0-9 - _ . ~ / becomes %XX.
QByteArray encodePath(const QByteArray& bytes);
// Nothing when an escape is broken or the result holds a NUL byte.
std::optional<QByteArray> decodePath(const QByteArray& text);

// The file's text. `path` is absolute in the home Trash, relative to the top folder in a
// top-folder Trash; `date` is written in local time. `entry` names the History entry the item
// belongs to, so that an item moved just before an interruption can be found again.
QByteArray format(const QString& path, const QDateTime& date, const QUuid& entry);

struct Parsed {
    QString original;  // absolute
    std::optional<QDateTime> deleted;
    QUuid entry;  // null when another tool wrote the file

    bool operator==(const Parsed&) const = default;
};

// Reads a file's text; a relative path is taken from `base` (the folder the Trash belongs to).
// Nothing when it is damaged: no "[Trash Info]" group first, no Path, a broken escape, or a
// "." or ".." component that would lead somewhere else.
std::optional<Parsed> parse(const QByteArray& text, const QString& base);

}  // namespace TrashInfo
