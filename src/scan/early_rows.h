#pragma once
// Per-rule sizes shown while the home walk is still running. Walking threads report each finished
// walk root; rows go out at most four times a second, and at once when a rule's last root is done.

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <chrono>
#include <functional>
#include <mutex>
#include <optional>

#include "core/kinds.h"

namespace Catalogue {
struct Rule;
}

struct EarlyRow {
    QString id;
    QString title;
    Bucket bucket = Bucket::now;
    qint64 bytes = 0;  // the finished roots of the rule
    bool done = false;  // every root of the rule has finished

    bool operator==(const EarlyRow&) const = default;
};

// Receives a report's sequence number (rising by one per report) and the rows with bytes in them.
using EarlyReport = std::function<void(qint64 seq, const QList<EarlyRow>& rows)>;

class EarlyRows {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    static constexpr std::chrono::milliseconds interval{250};

    explicit EarlyRows(EarlyReport report, Clock clock = &std::chrono::steady_clock::now);

    // The walk's roots, by index. A rule takes every root that is one of its folders or lies inside
    // one, except what its skip test leaves out. Nothing is reported yet: no root has a size.
    void start(const QStringList& roots);
    // Roots of a second walk (the cache folder when it lies outside the home) join the first ones;
    // the index to add to theirs when calling done().
    int more(const QStringList& roots);
    // Root `index` measured `bytes`; called from any walking thread.
    void done(int index, qint64 bytes);

private:
    struct Tracked {
        const Catalogue::Rule* rule;  // one of the catalogue's, which live as long as the program
        QList<int> roots;
    };

    int track(const QStringList& roots);  // with the lock held

    std::mutex lock_;  // guards everything below
    QList<Tracked> rules_;
    QHash<int, qint64> sizes_;
    int rootCount_ = 0;
    std::optional<std::chrono::steady_clock::time_point> last_;  // none: never reported
    qint64 seq_ = 0;
    EarlyReport report_;
    Clock clock_;
};
