#pragma once
// Builds Linux-shaped home folders with known sizes: app and tool caches in .cache (with folders
// that have rows of their own and folders apps keep state in), developer caches, Electron apps'
// settings folders, Flatpak apps' folders and user folders with localised names. Every file
// written is remembered with its allocated bytes, so a test can ask what any folder should measure.

#include <QDateTime>
#include <QMap>
#include <QString>

#include "support/mac_home.h"

class LinuxHome {
public:
    // Builds under `root` (usually Sandbox::home() after Sandbox::clearHome()); dates count back
    // from `now`. Cache folders go to `cache` when given (an XDG_CACHE_HOME elsewhere), else
    // root/.cache.
    explicit LinuxHome(QString root, QDateTime now = QDateTime::currentDateTimeUtc(), QString cache = {});

    QString at(const QString& relative) const { return files_.at(relative); }
    // Where a cache entry goes: "yarn/x" → <cache>/yarn/x.
    QString inCache(const QString& relative) const;
    qint64 file(const QString& relative, qint64 size, double ageDays = 1) { return files_.file(relative, size, ageDays); }
    // What du says of `relative` ("" for the whole home, which holds the cache folder only when it
    // lies inside).
    qint64 bytesUnder(const QString& relative) const;
    // The same for a folder of the cache: "yarn" → <cache>/yarn ("" for the whole cache).
    qint64 cacheBytes(const QString& relative) const;
    // The same less the folder's own blocks: what a row that offers the folder's entries frees.
    qint64 bytesInside(const QString& relative) const { return files_.bytesInside(relative); }
    qint64 cacheInside(const QString& relative) const;

    // .cache: app caches (one with a file over 1 MB, a loose file), every folder with a row of its
    // own, the Hugging Face login token, and folders apps keep state in (KeePassXC, obexd, a token).
    void xdgCaches();
    // Maven, rustup toolchains, cargo, Gradle wrappers, pnpm's store, ccache, Go modules,
    // Podman's storage and rootless Docker.
    void developerCaches();
    // ~/.config: VS Code, Slack and discord with their cache folders and settings, git without.
    void electronApps();
    // ~/.var/app: three Flatpak apps with caches, data and settings; a user Flatpak install.
    void flatpakData();
    // All of the above, and user-dirs.dirs with German names and a Desktop that is the home itself,
    // and files in them.
    void everything();

private:
    QString cacheFile(const QString& relative) const;  // the relative-or-absolute key of a cache file

    // Writes a text file and remembers its allocated bytes.
    void text(const QString& relative, const QByteArray& content);

    MacHome files_;  // the writing and remembering of files is the same as for a Mac-shaped home
    QString root_;
    QString cache_;
};
