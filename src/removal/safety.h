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

// `apps` holds the application bundles being uninstalled right now: only they may be removed
// outside the home folder.
Verdict check(const QString& path, const QString& home = Home::path(), const QSet<QString>& apps = {});

// The same check for many paths against one home folder, which is resolved once rather than for
// every path (a removal of thousands of items).
class Checker {
public:
    explicit Checker(const QString& home = Home::path());
    Verdict check(const QString& path, const QSet<QString>& apps = {}) const;

private:
    QString home_;
    QString realHome_;
    QSet<QString> userFolders_;  // resolved, inside the home
};

// The paths that may never be removed themselves, the desktop's user folders among them.
QSet<QString> roots(const QString& home);
// True when `relative` (to home) is the container of a system application.
bool appleContainer(const QString& relative);
// True when the folder at `path` holds protected data: it is a parent of a protected place, or,
// with `look`, a bounded search three levels deep finds a protected library.
bool holdsProtected(const QString& path, const QString& home, bool look);
// The fully resolved path; nothing when it cannot be resolved.
std::optional<QString> realPath(const QString& path);

const QSet<QString>& protectedNames();
const QSet<QString>& libraryNames();
const QSet<QString>& protectedExtensions();

// The identifiers of the applications running now. The built-in source asks the platform (the
// running Flatpak sandboxes); tests replace it.
using RunningSource = std::function<QSet<QString>()>;
void setRunning(RunningSource source);
QSet<QString> running();

}  // namespace Safety
