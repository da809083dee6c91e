#pragma once
// Builds Mac-shaped home folders with known sizes: Library/Caches with own-row and com.apple.
// folders, Xcode data, package caches, Downloads with installers and partial downloads, code roots
// with idle and recent projects. Every file written is remembered with its allocated bytes, so a
// test can ask what any folder should measure.

#include <QDateTime>
#include <QMap>
#include <QString>

class MacHome {
public:
    // Builds under `root` (usually Sandbox::home() after Sandbox::clearHome()); dates count back
    // from `now`.
    explicit MacHome(QString root, QDateTime now = QDateTime::currentDateTimeUtc());

    QString at(const QString& relative) const;
    // Writes a file of `size` bytes of real data, `ageDays` old; returns its allocated bytes.
    qint64 file(const QString& relative, qint64 size, double ageDays = 1);
    // Sets the modification date of a file or folder.
    void age(const QString& relative, double ageDays);
    // What du says of `relative` ("" for all), folders included; once it is gone, the files that
    // were written below it.
    qint64 bytesUnder(const QString& relative) const;
    // The same less the folder's own blocks: what a row that offers the folder's entries frees.
    qint64 bytesInside(const QString& relative) const;

    // Library/Logs with a subfolder and loose small files.
    void logs();
    // The logs and: Library/Caches with two apps' caches (one with a file over 1 MB), macOS's own
    // caches, a com.applesauce folder, a loose small file and every folder that has a row of its
    // own; DerivedData with a recent and an old project, device support for two devices, archives,
    // simulator caches; npm, pip, uv, Gradle, cargo, pnpm, Hugging Face and Puppeteer downloads;
    // device backups, Ollama models and the Docker disk; Downloads with installers (Firefox's app
    // is installed) and an old and a fresh partial download; Applications with Firefox.app and a
    // macOS installer; Projects/old-shop idle for 200 days, Projects/fresh touched yesterday and
    // Documents/GitHub/recipes idle.
    void everything();

private:
    QString root_;
    QDateTime now_;
    QMap<QString, qint64> written_;  // relative path → allocated bytes
};
