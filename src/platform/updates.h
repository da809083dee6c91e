#pragma once
// How this copy of Quarle gets its updates. Quarle never downloads or installs anything itself: a
// copy installed as a Debian package is updated by the package manager, and Quarle only asks dpkg
// which package holds its program and apt which versions of it are known. A copy that no package
// holds was built from source.

#include <QString>
#include <functional>
#include <optional>

class QObject;

namespace Updates {

// What apt knows of a package (`apt-cache policy PACKAGE`).
struct Policy {
    QString installed;            // empty: not installed, or apt does not know the package
    QString candidate;            // the version apt would install; empty when none
    bool fromRepository = false;  // a package source offers it (not only the local dpkg database)
};

struct Channel {
    QString package;  // the package that holds the running program; empty: built from source
    std::optional<Policy> policy;  // nothing when apt could not be asked
};

// Parses the output of `LC_ALL=C apt-cache policy PACKAGE`.
Policy parsePolicy(const QString& output);

// Asks dpkg which package holds `program` and apt what it knows of that package. Runs child
// processes for a few seconds at most: call it off the main thread.
Channel ask(const QString& program);

// Runs `ask` on a thread of its own and hands the answer to `done` on `context`'s thread (never
// when `context` is gone by then).
void askInBackground(const QString& program, QObject* context, std::function<void(const Channel&)> done);

// "Quarle 0.1", with " (revision abc1234)" when built from a checkout.
QString versionLine(const QString& version, const QString& revision);

// The sentence Settings shows under the version; `channel` is nothing while still asking.
QString sentence(const std::optional<Channel>& channel);

}  // namespace Updates
