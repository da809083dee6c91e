#include "scan/early_rows.h"

#include "core/checked.h"
#include "scan/catalogue.h"

namespace {

// True when walk root `root` holds only what the rule's folder `folder` covers: it is the folder or
// lies inside it, below an entry the rule does not skip.
bool covers(const Catalogue::Rule& rule, const QString& folder, const QString& root) {
    if (root == folder) return true;
    if (!root.startsWith(folder) || root.size() <= folder.size() || root.at(folder.size()) != QLatin1Char('/'))
        return false;
    const QString below = root.mid(folder.size() + 1);
    return !rule.skips(below.section(QLatin1Char('/'), 0, 0));
}

}  // namespace

EarlyRows::EarlyRows(EarlyReport report, Clock clock) : report_(std::move(report)), clock_(std::move(clock)) {}

void EarlyRows::start(const QStringList& roots) {
    std::lock_guard guard(lock_);
    rules_.clear();
    sizes_.clear();
    rootCount_ = 0;
    track(roots);
}

int EarlyRows::more(const QStringList& roots) {
    std::lock_guard guard(lock_);
    return track(roots);
}

int EarlyRows::track(const QStringList& roots) {
    if (rules_.isEmpty()) {
        for (const Catalogue::Rule& rule : Catalogue::rules())
            if (rule.bucket != Bucket::keep) rules_.append(Tracked{&rule, {}});
    }
    const int first = rootCount_;
    for (Tracked& t : rules_) {
        const Catalogue::Rule& rule = *t.rule;
        for (const QString& relative : rule.paths) {
            const QString folder = Catalogue::at(relative);
            for (int i = 0; i < roots.size(); ++i)
                if (covers(rule, folder, roots[i])) t.roots.append(first + i);
        }
    }
    rootCount_ += int(roots.size());
    return first;
}

void EarlyRows::done(int index, qint64 bytes) {
    QList<EarlyRow> rows;
    qint64 seq = 0;
    {
        std::lock_guard guard(lock_);
        sizes_.insert(index, bytes);
        bool completed = false;
        for (const Tracked& t : rules_) {
            EarlyRow row{t.rule->id, t.rule->title, t.rule->bucket, 0, true};
            for (int root : t.roots) {
                const auto size = sizes_.constFind(root);
                if (size == sizes_.cend())
                    row.done = false;
                else
                    row.bytes = Checked::add(row.bytes, *size);
            }
            if (row.done && t.roots.contains(index)) completed = true;
            if (row.bytes > 0) rows.append(std::move(row));
        }
        const auto now = clock_();
        if (!completed && last_ && now - *last_ <= interval) return;
        last_ = now;
        seq_ = Checked::add(seq_, 1);
        seq = seq_;
    }
    if (report_) report_(seq, rows);
}
