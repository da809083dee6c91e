#pragma once
// Which items in the user's Library (and in a Linux home's app folders) belong to which installed
// app, how sure that is, and why. Stateless rules over names; the app scanner lists the places and
// calls them.

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>
#include <utility>

#include "core/kinds.h"

namespace Leftovers {

// Another name a Linux app goes by (the program it runs, its window class), with the reason shown
// when an entry is named exactly so.
struct OtherName {
    QString name;
    QString why;  // "Named after its program (firefox)"

    bool operator==(const OtherName&) const = default;
};

// What the rules know of one installed app.
struct AppIdentity {
    QString name;      // display name
    QString bundleID;  // may be empty
    QString team;      // code-signing team, may be empty
    // Matched by the name rule like `name`, and even without a bundle identifier: a Linux app
    // without one lists its display name here (an app bundle whose Info.plist could not be read
    // has none, and matches nothing).
    QList<OtherName> otherNames = {};

    bool operator==(const AppIdentity&) const = default;
};

// One rule's verdict; the larger strength wins.
struct Match {
    Confidence confidence = Confidence::likely;
    QString why;
    int strength = 0;

    bool operator==(const Match&) const = default;
};

// The Library sub-folders searched, under home + "/Library/". Nothing else is ever looked at.
inline const QStringList places{
    QStringLiteral("Application Support"), QStringLiteral("Caches"), QStringLiteral("Preferences"),
    QStringLiteral("Containers"), QStringLiteral("Group Containers"), QStringLiteral("HTTPStorages"),
    QStringLiteral("WebKit"), QStringLiteral("Saved Application State"), QStringLiteral("Logs"),
    QStringLiteral("Application Scripts"), QStringLiteral("LaunchAgents"), QStringLiteral("Cookies"),
    QStringLiteral("Preferences/ByHost")};

// A Linux home's places, relative to it: the folders Flatpak gives each app ("~/.var/app/<id>"),
// and the XDG folders where apps keep their settings, data and caches (for the account's own home,
// where $XDG_CONFIG_HOME, $XDG_DATA_HOME and $XDG_CACHE_HOME say).
inline const QString flatpakPlace = QStringLiteral(".var/app");
inline const QStringList desktopPlaces{QStringLiteral(".config"), QStringLiteral(".local/share"),
                                       QStringLiteral(".cache")};
// Entries of the desktop places that the desktop and its tools share between all apps (and
// Quarle's own): never one app's leftover, whatever an app is called.
inline const QStringList desktopSharedEntries{
    QStringLiteral("applications"), QStringLiteral("autostart"),      QStringLiteral("dconf"),
    QStringLiteral("desktop-directories"), QStringLiteral("flatpak"), QStringLiteral("fontconfig"),
    QStringLiteral("fonts"),        QStringLiteral("gtk-2.0"),        QStringLiteral("gtk-3.0"),
    QStringLiteral("gtk-4.0"),      QStringLiteral("gvfs-metadata"),  QStringLiteral("icons"),
    QStringLiteral("keyrings"),     QStringLiteral("menus"),          QStringLiteral("mime"),
    QStringLiteral("mimeapps.list"), QStringLiteral("Quarle"),        QStringLiteral("recently-used.xbel"),
    QStringLiteral("sounds"),       QStringLiteral("systemd"),        QStringLiteral("themes"),
    QStringLiteral("thumbnails"),   QStringLiteral("Trash"),          QStringLiteral("user-dirs.dirs"),
    QStringLiteral("user-dirs.locale"), QStringLiteral("xdg-desktop-portal")};

// Vendor prefixes shared by too many makers' apps to prove anything.
inline const QStringList broadVendors{
    QStringLiteral("com.apple"), QStringLiteral("com.google"), QStringLiteral("com.microsoft"),
    QStringLiteral("com.adobe"), QStringLiteral("org.mozilla"), QStringLiteral("com.github"),
    QStringLiteral("io.github")};

// Suffixes `stem` strips, tested in this order.
inline const QStringList stemSuffixes{QStringLiteral(".plist"), QStringLiteral(".savedState"),
                                      QStringLiteral(".binarycookies"), QStringLiteral(".log"),
                                      QStringLiteral(".ShipIt")};

// First labels of names that look like bundle identifiers.
inline const QStringList bundleIDFirstLabels{
    QStringLiteral("com"), QStringLiteral("org"), QStringLiteral("net"), QStringLiteral("io"),
    QStringLiteral("dev"), QStringLiteral("app"), QStringLiteral("co"), QStringLiteral("me"),
    QStringLiteral("de"), QStringLiteral("us"), QStringLiteral("ai")};

// The name without the first stem suffix it ends with (case-sensitive, one suffix at most).
QString stem(const QString& name);
// The first two labels of a bundle identifier with at least three ("com.example" of
// "com.example.editor"); empty labels are dropped.
std::optional<QString> vendor(const QString& bundleID);
// Lower-cased runs of letters and digits.
QStringList words(const QString& text);
// The stem has at least three labels and its first, lower-cased, is a known first label.
bool looksLikeBundleID(const QString& name);
// The vendors, lower-cased, that more than one of the apps has. Lower-cased because `owner`
// compares lower-cased vendors: com.Example.a and com.example.b share a maker.
QSet<QString> sharedVendors(const QList<AppIdentity>& apps);

// The rules differ by place. In the Library all of them apply. In `flatpakPlace` only the exact
// bundle identifier counts (each folder there is one app's, so a prefix or a maker proves nothing).
// In `desktopPlaces` no match is `sure`: apps installed otherwise (a distribution's package of the
// same app) write there under the same names.
std::optional<Match> match(const QString& name, const QString& place, const AppIdentity& app,
                           bool vendorIsShared);

// The app with the strongest match for the entry; on equal strength the earlier app keeps it.
std::optional<std::pair<AppIdentity, Match>> owner(const QString& name, const QString& place,
                                                   const QList<AppIdentity>& apps,
                                                   const QSet<QString>& sharedVendors);

// The name shown for a bundle without a usable name in its Info.plist: its file name without the
// extension ("Editor" for ".../Editor.app").
QString displayName(const QString& bundlePath);

// One name the name rule looks for, with its words counted once.
struct PreparedName {
    QString name;
    QString wholeWhy;          // the reason when an entry is named exactly so
    QStringList words;
    qsizetype letters = 0;     // characters of the words joined
};

// An app's identity with what every match needs computed once; a scan matches thousands of
// entries against every app, so `owner` over prepared apps is the form the scanner uses.
struct PreparedApp {
    AppIdentity app;
    QString bundleID;              // lower-cased
    QString vendor;                // lower-cased; empty when it may not be used
    QList<PreparedName> names;     // the display name (with a bundle identifier), then the others
};
QList<PreparedApp> prepare(const QList<AppIdentity>& apps, const QSet<QString>& sharedVendors);
// The index of the owning app in `apps` and its match.
std::optional<std::pair<qsizetype, Match>> owner(const QString& name, const QString& place,
                                                 const QList<PreparedApp>& apps);

}  // namespace Leftovers
