#pragma once
// What the Storage page says about the selected item beyond its size: its kind and dates, read
// from the disk in the background.

#include <QDateTime>
#include <QString>
#include <optional>

struct SpaceDetails {
    QString path;
    QString kind;  // "Folder", or the file type's description ("PNG image")
    std::optional<QDateTime> created;
    std::optional<QDateTime> modified;
    std::optional<QDateTime> opened;  // last read
    bool operator==(const SpaceDetails&) const = default;
};
