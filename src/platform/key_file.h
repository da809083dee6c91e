#pragma once
// The "[Group]" and "Key=Value" files of the Linux desktop: desktop entries (applications,
// autostart), Flatpak's metadata and systemd's unit files. Read strictly enough that a damaged
// file is told apart from a good one, and no further: nothing here knows what a key means.

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

struct KeyFile {
    // The two dialects differ in small ways: systemd units also take ";" comments and lines
    // continued with a trailing backslash, and their values are kept as written; desktop entries
    // turn the escapes \s \n \t \r \\ of their values into the characters.
    enum class Syntax { desktopEntry, systemdUnit };

    struct Entry {
        QString group;
        QString key;  // as written, a localized key with its "[locale]"
        QString value;

        bool operator==(const Entry&) const = default;
    };

    QStringList groups;    // in the order they first appear
    QList<Entry> entries;  // in file order; a key may appear more than once

    bool hasGroup(const QString& group) const { return groups.contains(group); }
    // The last value given to the key in the group (a later line overrides an earlier one).
    std::optional<QString> value(const QString& group, const QString& key) const;
    // Every value given to the key in the group, in file order.
    QStringList values(const QString& group, const QString& key) const;
    // A boolean of a desktop entry: "true" or "1" is true, "false" or "0" false, anything else
    // (or no such key) nothing.
    std::optional<bool> flag(const QString& group, const QString& key) const;

    // Nothing when the data is not UTF-8, a key comes before the first group, a group header is
    // not closed, or a line is neither blank, a comment, a group header nor Key=Value.
    static std::optional<KeyFile> parse(const QByteArray& data, Syntax syntax);
    // parse() of a small regular file (links followed); nothing when it cannot be read.
    static std::optional<KeyFile> read(const QString& path, Syntax syntax);

    bool operator==(const KeyFile&) const = default;
};
