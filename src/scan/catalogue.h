#pragma once
// The built-in knowledge of what in a home folder is safe or sensible to clear. It is data compiled
// into the program and never changes while it runs.

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>

#include "core/kinds.h"

namespace Catalogue {

// One kind of clearable data: the folders it covers (relative to the home folder) and its texts.
struct Rule {
    QString id;
    QString title;
    Bucket bucket = Bucket::now;
    bool developer = false;
    QStringList paths;
    // Called with the name of an entry directly inside one of `paths`; true leaves it out.
    bool (*skip)(const QString& name) = nullptr;
    QString explain;
    QString comesBack;
    Removal removal;
    // The entries directly inside the folders are offered one by one rather than as a whole.
    bool listParts = false;

    bool skips(const QString& name) const { return skip && skip(name); }
    bool operator==(const Rule&) const = default;
};

// The rules, in the order the rows are made: the 22 that know macOS places (a few with the Linux
// places of the same data), then the ones for Linux homes.
const QList<Rule>& rules();
// The first rule with exactly this id.
std::optional<Rule> rule(const QString& id);

// Folders inside Library/Caches that have a row of their own.
const QSet<QString>& ownCacheRows();
// Where source projects are looked for, relative to the home folder, in search order.
const QStringList& codeRoots();
// File-name extensions (lower case, no dot) of installers and disk images.
const QSet<QString>& installerExtensions();
// File-name extensions (lower case, no dot) of interrupted downloads.
const QSet<QString>& unfinishedExtensions();

// "caches" leaves out the folders counted by their own rows and macOS's own caches.
bool skipInCaches(const QString& name);

// Where rule paths start. A path is relative to the home folder unless it begins with an anchor's
// prefix: paths under ".cache" follow the user's cache folder ($XDG_CACHE_HOME) wherever it points,
// so one table serves Mac-shaped and Linux homes and a moved cache takes its rules with it.
struct Anchor {
    QString prefix;
    QString (*folder)();
};
const QList<Anchor>& anchors();
// The folder ".cache" stands for: $XDG_CACHE_HOME when absolute, else ~/.cache; ~/.cache too when
// the variable names the home itself or a folder above it.
QString cacheFolder();
// The absolute place of rule path `relative`.
QString at(const QString& relative);

// Folders inside .cache that have a row of their own.
const QSet<QString>& ownXdgCacheRows();
// Folders inside .cache where apps keep state rather than a cache.
const QSet<QString>& xdgCacheState();
// True for a name that looks like it holds a login ("token", "credentials", "secrets", …).
bool loginLike(const QString& name);
// "xdgcache" leaves out the own rows, the apps' state and anything named like a login.
bool skipInXdgCache(const QString& name);
// "huggingface" never offers the login token.
bool skipInHuggingFace(const QString& name);
// Folders directly inside an Electron or Chromium app's settings folder that hold only caches.
const QSet<QString>& electronCacheFolders();

}  // namespace Catalogue

// What the user is told about whether cleared data comes back. Rows that say the same thing share
// one text, so the wording never drifts apart.
namespace ComesBack {
inline const QString byItself = QStringLiteral("Comes back by itself");
inline const QString appsWriteNew = QStringLiteral("Apps write new ones");
inline const QString nextBuild = QStringLiteral("Rebuilt on the next build");
inline const QString nextBoot = QStringLiteral("Rebuilt on the next boot");
inline const QString ifNeeded = QStringLiteral("Downloaded again if needed");
inline const QString onInstall = QStringLiteral("Downloaded again on install");
inline const QString nextResolve = QStringLiteral("Fetched on the next resolve");
inline const QString onOpen = QStringLiteral("Re-indexed on open");
inline const QString onConnect = QStringLiteral("Copied again when you connect a device");
inline const QString goneForGood = QStringLiteral("Gone for good");
inline const QString nextRun = QStringLiteral("Downloaded again on the next run");
inline const QString onBuild = QStringLiteral("Downloaded again on build");
inline const QString whenUsed = QStringLiteral("Downloaded again when used");
inline const QString inFinder = QStringLiteral("Manage in Finder");
inline const QString withOllama = QStringLiteral("Manage with ollama");
inline const QString inDocker = QStringLiteral("Manage in Docker");
inline const QString npmInstall = QStringLiteral("npm install brings them back");
inline const QString fromMaker = QStringLiteral("Download again from the maker");
inline const QString ifYouNeedIt = QStringLiteral("Download again if you need it");
inline const QString fromAppStore = QStringLiteral("Download again from the App Store");
inline const QString withPodman = QStringLiteral("Manage with podman");
}  // namespace ComesBack
