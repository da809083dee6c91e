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

// The 22 rules, in the order the rows are made.
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
}  // namespace ComesBack
