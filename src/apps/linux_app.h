#pragma once
// An app of a Linux desktop that the user can remove without an administrator's help, as read from
// disk before anything is measured: a Flatpak app (of the user's or the system's installation) or
// an AppImage. Apps of the distribution's package manager are not among them.

#include <QList>
#include <QString>
#include <optional>

#include "apps/leftovers.h"
#include "apps/system_folders.h"
#include "core/records.h"

struct LinuxApp {
    enum class Origin { userFlatpak, systemFlatpak, appImage };

    Origin origin = Origin::appImage;
    // Flatpak: its folder "<installation>/app/<id>" (what is measured, and what the model knows it
    // by); AppImage: the file.
    QString path;
    QString name;
    // Flatpak: the app id. AppImage: the id of its desktop entry when that has the shape of an app
    // id ("org.example.Editor"), else empty.
    QString id;
    QString developer;
    // The names its leftovers may carry besides `name`: its program, its window class.
    QList<Leftovers::OtherName> otherNames;

    Leftovers::AppIdentity identity() const { return {name, id, QString(), otherNames}; }
    // The record listed on the Apps page, not yet measured.
    InstalledApp record() const { return {name, id, path, 0, std::nullopt, developer, {}}; }

    bool operator==(const LinuxApp&) const = default;
};

namespace LinuxApps {

// An identifier as Flatpak requires one: at least three dot-separated elements of letters, digits,
// "_" and "-", none starting with a digit.
bool isAppID(const QString& id);

// Other names of an app for the leftover rules, each with its reason; nothing for a name too
// generic to tell one app from another (a program called "launcher", "electron" or "python3").
std::optional<Leftovers::OtherName> programName(const QString& program);
std::optional<Leftovers::OtherName> windowClass(const QString& wmClass);

// The developer when nothing better is known: the vendor part of the id ("org.example").
QString vendorOf(const QString& id);

// The Flatpak apps of the user's installation, then of the system's, then the AppImages.
QList<LinuxApp> list(const SystemFolders& folders = SystemFolders::current());

}  // namespace LinuxApps
