#pragma once
// The last gate before anything is moved to the Trash or deleted. `check` resolves a path to where
// it really lies, refuses it with a Refusal, or returns the resolved path that the caller must use
// from then on. Nothing here changes anything on disk.

#include <QSet>
#include <QString>
#include <functional>
#include <optional>

#include "core/home.h"
#include "removal/refusal.h"

namespace Safety {

// The outcome of a check: the resolved path, or why the path may not be removed.
struct Verdict {
    QString path;  // resolved; empty when refused
    std::optional<Refusal> refusal;

    bool ok() const { return !refusal; }
    bool operator==(const Verdict&) const = default;
};

// The identifiers of the applications running now, asked only when a path lies in an app's own
// folder. The default asks the platform (the running Flatpak sandboxes).
using RunningSource = std::function<QSet<QString>()>;
QSet<QString> runningOnPlatform();

// `apps` holds the application bundles being uninstalled right now: only they may be removed
// outside the home folder.
Verdict check(const QString& path, const QString& home = Home::path(), const QSet<QString>& apps = {},
              const RunningSource& running = runningOnPlatform);

// The same check for many paths against one home folder, which is resolved once rather than for
// every path (a removal of thousands of items).
class Checker {
public:
    explicit Checker(const QString& home = Home::path(), RunningSource running = runningOnPlatform);
    Verdict check(const QString& path, const QSet<QString>& apps = {}) const;

private:
    QString home_;
    QString realHome_;
    QSet<QString> userFolders_;  // resolved, inside the home
    RunningSource running_;
};

// The paths that may never be removed themselves, the desktop's user folders among them.
QSet<QString> roots(const QString& home);
// True when `relative` (to home) is the container of a system application.
bool appleContainer(const QString& relative);
// True when the folder at `path` holds protected data: it is a parent of a protected place, or,
// with `look`, a search of what it holds finds a protected name or library at any depth. The search
// stops after `deepLookEntries`; a folder that big counts as protected unless it is a known cache
// (`cache`), where only what was seen counts.
constexpr int deepLookEntries = 200000;
bool holdsProtected(const QString& path, const QString& home, bool look, bool cache = false,
                    int limit = deepLookEntries);
// True when `real` lies inside a Trash folder: the home Trash or a drive's .Trash-UID or .Trash/UID.
bool inTrash(const QString& real);
// The fully resolved path; nothing when it cannot be resolved.
std::optional<QString> realPath(const QString& path);

const QSet<QString>& protectedNames();
const QSet<QString>& libraryNames();
const QSet<QString>& protectedExtensions();

}  // namespace Safety
