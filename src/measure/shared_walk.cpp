#include "measure/shared_walk.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>
#include <thread>

#include "core/checked.h"
#include "core/paths.h"
#include "measure/charging.h"
#include "measure/dir_listing.h"
#include "measure/dir_node.h"
#include "measure/walker.h"
#include "measure/yielding.h"

SharedWalk::SharedWalk(const QStringList& roots, Options options)
    : options_(std::move(options)), dedupe_(options_.dedupe ? options_.dedupe : &ownDedupe_) {
    for (const QString& root : roots)
        stack_.push_back({DirNodes::root(Paths::toBytes(root).toStdString()), int(stack_.size()), true});
    totals_.resize(stack_.size());
    pending_.assign(stack_.size(), 1);
    if (roots.size() > 1) noteBindMounts(roots);
}

SharedWalk::SharedWalk(const std::vector<DirNode*>& roots, Options options)
    : options_(std::move(options)), dedupe_(options_.dedupe ? options_.dedupe : &ownDedupe_) {
    for (DirNode* root : roots) stack_.push_back({root, int(stack_.size()), true});
    totals_.resize(stack_.size());
    pending_.assign(stack_.size(), 1);
}

// Roots that are two mounts of one file system (bind mounts) reach the same files by two ways:
// then every file is charged once by device and inode, not only hard links.
void SharedWalk::noteBindMounts(const QStringList& roots) {
    std::vector<std::pair<qint32, quint64>> seen;
    for (const QString& root : roots) {
        qint32 device = 0;
        quint64 mount = 0;
        if (!DirListing::mountOf(Paths::toBytes(root).constData(), device, mount)) continue;
        for (const auto& [d, m] : seen)
            if (d == device && m != mount) dedupe_->chargeEveryFile();
        seen.emplace_back(device, mount);
    }
}

SharedWalk::~SharedWalk() {
    for (const Item& item : stack_) DirNodes::release(item.node);
}

QList<WalkResult> SharedWalk::runEach() {
    if (!stack_.empty()) {
        // The roots are listed first to last, as the stack is read from its end.
        std::reverse(stack_.begin(), stack_.end());
        const int count = options_.threads > 0 ? options_.threads : Walker::threadCount();
        std::vector<std::thread> helpers;
        for (int i = 1; i < count; ++i) {
            try {
                helpers.emplace_back([this] { work(); });
            } catch (const std::system_error&) {
                break;  // no more threads to be had: walk with those already running
            }
        }
        work();
        for (std::thread& t : helpers) t.join();
    }
    QList<WalkResult> out;
    out.reserve(qsizetype(totals_.size()));
    for (const Tally& t : totals_) out.append(t.result());
    return out;
}

void SharedWalk::stopAll() {
    std::vector<Item> dropped;
    {
        std::lock_guard guard(lock_);
        stopped_ = true;
        dropped.swap(stack_);
    }
    wake_.notify_all();
    for (const Item& item : dropped) DirNodes::release(item.node);
}

void SharedWalk::work() {
    Yielding::lowerThisThread();
    Tally tally;
    std::vector<DirNode*> subfolders;
    int taken = 0;
    for (;;) {
        Item item{};
        {
            std::unique_lock guard(lock_);
            ++waiting_;
            wake_.wait(guard, [this] { return !stack_.empty() || busy_ == 0 || stopped_; });
            --waiting_;
            if (stack_.empty() || stopped_) return;
            item = stack_.back();
            stack_.pop_back();
            ++busy_;
        }
        if (++taken % options_.pollEvery == 0 && options_.cancelled && options_.cancelled()) {
            DirNodes::release(item.node);
            {
                std::lock_guard guard(lock_);
                --busy_;
            }
            stopAll();
            return;
        }

        tally = Tally{};
        subfolders.clear();
        readFolder(item, tally, subfolders);

        bool completed = false;
        bool finished = false;
        std::size_t wakeUp = 0;
        bool drop = false;
        Tally total;
        {
            std::lock_guard guard(lock_);
            drop = stopped_;
            if (!drop) {
                for (DirNode* sub : subfolders) stack_.push_back({sub, item.root, false});
                totals_[std::size_t(item.root)].add(tally);
                int& pending = pending_[std::size_t(item.root)];
                pending += int(subfolders.size()) - 1;
                completed = pending == 0;
                if (completed) total = totals_[std::size_t(item.root)];
            }
            --busy_;
            finished = stack_.empty() && busy_ == 0;
            wakeUp = std::min(subfolders.size(), std::size_t(waiting_));
        }
        if (drop) {
            for (DirNode* sub : subfolders) DirNodes::release(sub);
            wake_.notify_all();
            return;
        }
        if (finished) {
            wake_.notify_all();
        } else {
            for (std::size_t i = 0; i < wakeUp; ++i) wake_.notify_one();  // only as many as have work
        }
        if (options_.progress) options_.progress->add(tally.files, tally.bytes);
        if (completed && options_.done) options_.done(item.root, total.result());
    }
}

// Lists one folder: its files are charged, subfolders queued. Only entries the
// directory does not already name as folders or links are stat'ed. Another volume, or another mount
// of this one, is not entered (nor called denied).
void SharedWalk::readFolder(const Item& item, Tally& tally, std::vector<DirNode*>& subfolders) {
    DirNode* node = item.node;
    const int fd = DirNodes::open(node);
    if (fd < 0) {
        tally.denied = 1;
        DirNodes::release(node);
        return;
    }
    DirListing::Stat self;
    const bool known = DirListing::statOpen(fd, self);
    if ((options_.device && (!known || self.device != *options_.device)) || (known && self.mountRoot && !item.top)) {
        ::close(fd);
        DirNodes::release(node);
        return;
    }
    Dedupe& dedupe = *dedupe_;
    Charging::Folder folder{fd, 0, false};
    if (known) {
        folder = Charging::folder(dedupe, fd, self);
        tally.bytes = Checked::add(tally.bytes, Charging::ownBlocks(dedupe, self));
    }
    const bool complete = DirListing::forEach(fd, [&](const DirListing::RawEntry& e) {
        if (e.type == DT_DIR) {
            subfolders.push_back(DirNodes::child(node, e.name, e.length));
            return;
        }
        if (e.type != DT_REG && e.type != DT_UNKNOWN) return;  // links, devices, sockets, pipes
        DirListing::Stat st;
        if (!DirListing::statAt(fd, e.name, st)) return;  // vanished meanwhile
        if (st.isDir) {
            subfolders.push_back(DirNodes::child(node, e.name, e.length));
        } else if (st.isFile) {
            tally.bytes = Checked::add(tally.bytes, Charging::file(dedupe, folder, e.name, st, tally.shares));
            ++tally.files;
            if (st.hasModified) tally.seen(st.modified);
        }
    });
    if (!complete) tally.denied = 1;
    DirNodes::finish(node, fd, !subfolders.empty());
}
