#pragma once
// Several threads walking folder trees from one shared last-in-first-out stack. Each root's total is
// reported the moment its last folder has been read, which lets a scan show sizes row by row.

#include <QList>
#include <QStringList>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include "measure/dedupe.h"
#include "measure/progress.h"
#include "measure/walk_types.h"

struct DirNode;

class SharedWalk {
public:
    struct Options {
        std::optional<qint32> device;  // folders on other devices are not entered
        Cancelled cancelled;
        std::function<void(int root, const WalkResult& total)> done;  // on a walking thread
        WalkProgress* progress = nullptr;
        int threads = 0;  // 0: the walker's thread count
        int pollEvery = 128;  // folders a thread reads between looks at `cancelled`
        Dedupe* dedupe = nullptr;  // the run's shared record; the walk's own when null
    };

    SharedWalk(const QStringList& roots, Options options);
    // Roots that are already queued folders (opened relative to a folder still held open).
    SharedWalk(const std::vector<DirNode*>& roots, Options options);
    ~SharedWalk();
    SharedWalk(const SharedWalk&) = delete;
    SharedWalk& operator=(const SharedWalk&) = delete;

    // Runs the walk on the caller's thread and threads-1 more; returns one total per root.
    QList<WalkResult> runEach();

private:
    struct Item {
        DirNode* node;
        int root;
        bool top;  // a root itself, entered even when it is the root of a mount
    };

    void work();
    void readFolder(const Item& item, Tally& tally, std::vector<DirNode*>& subfolders);
    void noteBindMounts(const QStringList& roots);
    void stopAll();

    Options options_;
    Dedupe ownDedupe_;
    Dedupe* dedupe_;

    std::mutex lock_;  // guards everything below
    std::condition_variable wake_;
    std::vector<Item> stack_;
    int busy_ = 0;
    int waiting_ = 0;  // threads asleep until there is work
    bool stopped_ = false;
    std::vector<Tally> totals_;
    std::vector<int> pending_;  // per root: folders on the stack or being read
};
