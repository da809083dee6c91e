#pragma once
// Which Debian package installed a file, from dpkg's database (`dpkg -S`). On a system without
// dpkg every answer is "none".

#include <QHash>
#include <QString>
#include <QStringList>

namespace DebianPackages {

// The spellings dpkg may know a file by: the path itself, the path with its symbolic links
// resolved, and for each the other side of the merged /usr (/bin/sh and /usr/bin/sh are one file
// on Debian 12, but dpkg knows only the name the package shipped).
QStringList spellings(const QString& path);

// Parses `dpkg -S` output: path → owning package(s), "dash" for "dash: /bin/sh", "a, b" when
// several packages share the file; an architecture qualifier (":amd64") is dropped. Diversion
// lines ("diversion by …") and lines without a path are ignored.
QHash<QString, QString> parseOwners(const QString& output);

// The owning package of each path that has one, asked with a single `dpkg -S` call for all of
// them (and their spellings), at most `timeoutSeconds` long. Paths without a package are absent.
QHash<QString, QString> owners(const QStringList& paths, double timeoutSeconds = 10.0);

}  // namespace DebianPackages
