#pragma once
// The plain value records every engine and page passes around. Sizes are allocated bytes.

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

#include "core/kinds.h"

// One path inside a finding.
struct Part {
    QString name;
    QString path;
    qint64 bytes = 0;
    QString note;
    std::optional<QDateTime> modified;

    const QString& id() const { return path; }
    bool operator==(const Part&) const = default;
};

// One clearable row of the Clean or Developer page.
struct Finding {
    QString id;
    QString title;
    QString place;
    qint64 bytes = 0;
    Bucket bucket = Bucket::now;
    QString explain;
    QString comesBack;
    Removal removal;
    bool developer = false;
    QStringList paths;
    QList<Part> parts;
    bool partial = false;

    bool operator==(const Finding&) const = default;
};

// One slice of the disk bar.
struct DiskPart {
    QString name;
    qint64 bytes = 0;
    Paint paint = Paint::mint;

    bool operator==(const DiskPart&) const = default;
};

// The start-up volume's space.
struct Volume {
    QString name;
    qint64 total = 0;
    qint64 free = 0;
    qint64 freeImportant = 0;  // free space including what the system can purge when asked

    qint64 used() const;
    qint64 purgeable() const;
    bool operator==(const Volume&) const = default;
};

// One row of the System Data breakdown.
struct SystemPart {
    QString name;
    qint64 bytes = 0;
    Paint paint = Paint::mint;
    Bucket bucket = Bucket::keep;
    QString action;
    bool estimated = false;

    bool operator==(const SystemPart&) const = default;
};

// One file or folder an app left behind.
struct Leftover {
    QString path;
    qint64 bytes = 0;
    QString why;
    Confidence confidence = Confidence::likely;

    bool operator==(const Leftover&) const = default;
};

// One installed application.
struct InstalledApp {
    QString name;
    QString bundleID;
    QString path;
    qint64 appBytes = 0;
    std::optional<QDateTime> lastUsed;
    QString developer;
    QList<Leftover> leftovers;

    const QString& id() const { return path; }
    // Leftovers that are only possibly the app's (`yours`) are deliberately not counted.
    qint64 leftoverBytes() const;
    qint64 total() const;
    bool operator==(const InstalledApp&) const = default;
};

// Leftovers of an app that is no longer installed.
struct Orphan {
    QString name;
    QString bundleID;
    QList<Leftover> leftovers;

    const QString& id() const { return name; }
    // Every leftover counts here, whatever its confidence, unlike InstalledApp::leftoverBytes.
    qint64 bytes() const;
    bool operator==(const Orphan&) const = default;
};

// One thing that starts at login or boot.
struct LoginItem {
    enum class Kind { app, agent, daemon, loginItem };

    QString name;
    QString identifier;
    QString developer;
    Kind kind = Kind::agent;
    bool enabled = true;
    QString path;
    bool needsAdmin = false;
    QString signer;
    bool missing = false;
    bool appStillThere = false;

    QString scope() const;
    bool operator==(const LoginItem&) const = default;
};

QString rawValue(LoginItem::Kind);
std::optional<LoginItem::Kind> loginKindFromRaw(const QString&);
