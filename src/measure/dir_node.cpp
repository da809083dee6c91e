#include "measure/dir_node.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

namespace {

constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

std::atomic<int> heldDescriptors{0};
std::atomic<int> heldLimit{-1};

// How many folder descriptors the walks may hold at once: half of what the process may open,
// after raising its soft limit to the hard one.
int descriptorBudget() {
    if (const int limit = heldLimit.load(std::memory_order_relaxed); limit >= 0) return limit;
    static const int budget = [] {
        rlimit limit{};
        if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return 256;
        if (limit.rlim_cur < limit.rlim_max) {
            limit.rlim_cur = limit.rlim_max;
            ::setrlimit(RLIMIT_NOFILE, &limit);
            ::getrlimit(RLIMIT_NOFILE, &limit);
        }
        const rlim_t half = limit.rlim_cur / 2;
        return int(std::clamp<rlim_t>(half, 32, 1 << 16));
    }();
    return budget;
}

// Opens `node` when neither it nor some ancestors hold a descriptor: walks up to the nearest open
// ancestor (or a root) and back down by names. Only used once the budget has run out.
int reopen(DirNode* node) {
    std::vector<DirNode*> chain;
    DirNode* at = node;
    while (at->fd < 0 && at->parent) {
        chain.push_back(at);
        at = at->parent;
    }
    int fd = at->fd >= 0 ? ::dup(at->fd) : ::open(at->name.c_str(), openFlags);
    for (auto it = chain.rbegin(); fd >= 0 && it != chain.rend(); ++it) {
        const int next = ::openat(fd, (*it)->name.c_str(), openFlags);
        const int saved = errno;
        ::close(fd);
        errno = saved;
        fd = next;
    }
    return fd;
}

}  // namespace

DirNode::DirNode(DirNode* parentNode, std::string entryName)
    : parent(parentNode), name(std::move(entryName)) {}

namespace DirNodes {

void setHeldLimit(int limit) { heldLimit = limit; }

int held() { return heldDescriptors.load(); }

DirNode* root(std::string absolutePath) { return new DirNode(nullptr, std::move(absolutePath)); }

DirNode* child(DirNode* parent, const char* name, std::size_t length) {
    parent->refs.fetch_add(1, std::memory_order_relaxed);
    return new DirNode(parent, std::string(name, length));
}

int open(DirNode* node) {
    if (!node->parent) return ::open(node->name.c_str(), openFlags);
    if (node->parent->fd >= 0) return ::openat(node->parent->fd, node->name.c_str(), openFlags);
    DirNode* parent = node->parent;
    const int parentFd = reopen(parent);
    if (parentFd < 0) return -1;
    const int fd = ::openat(parentFd, node->name.c_str(), openFlags);
    const int saved = errno;
    ::close(parentFd);
    errno = saved;
    return fd;
}

void finish(DirNode* node, int fd, bool hasSubfolders) {
    if (hasSubfolders && heldDescriptors.fetch_add(1, std::memory_order_relaxed) < descriptorBudget()) {
        node->fd = fd;
        if (DirNode* parent = std::exchange(node->parent, nullptr)) release(parent);
    } else {
        if (hasSubfolders) heldDescriptors.fetch_sub(1, std::memory_order_relaxed);
        ::close(fd);
        // Without a descriptor, the node keeps its parent so its subfolders can reopen it.
        if (!hasSubfolders)
            if (DirNode* parent = std::exchange(node->parent, nullptr)) release(parent);
    }
    release(node);
}

void release(DirNode* node) {
    while (node && node->refs.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        DirNode* parent = node->parent;
        if (node->fd >= 0) {
            ::close(node->fd);
            heldDescriptors.fetch_sub(1, std::memory_order_relaxed);
        }
        delete node;
        node = parent;
    }
}

}  // namespace DirNodes
