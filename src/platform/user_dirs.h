#pragma once
// The XDG user folders (Pictures, Documents, …) of a Linux home, read from user-dirs.dirs in the
// config folder. Their names are localised ("Bilder", "Dokumente"), so they are never guessed.

#include <QByteArray>
#include <QMap>
#include <QString>

namespace UserDirs {

// The keys the slices of the disk bar read.
inline const QString desktop = QStringLiteral("DESKTOP");
inline const QString documents = QStringLiteral("DOCUMENTS");
inline const QString download = QStringLiteral("DOWNLOAD");
inline const QString music = QStringLiteral("MUSIC");
inline const QString pictures = QStringLiteral("PICTURES");
inline const QString videos = QStringLiteral("VIDEOS");

// The folders a home has when user-dirs.dirs does not name them: key → name inside the home.
const QMap<QString, QString>& defaults();

// The folders named in the text of a user-dirs.dirs file: key ("PICTURES" for XDG_PICTURES_DIR) →
// absolute path. Values are quoted shell words: "$HOME/…" (or "${HOME}/…") is taken inside `home`,
// an absolute path as it stands, backslash escapes undone. A folder that is the home itself means
// "not set up" and maps to an empty text; relative values, comments and lines that do not parse are
// skipped.
QMap<QString, QString> parse(const QByteArray& text, const QString& home);

// The defaults inside `home`, overridden by what `file` names; a key set to the home itself is
// dropped. A missing or unreadable file gives the defaults.
QMap<QString, QString> read(const QString& home, const QString& file);

}  // namespace UserDirs
