#pragma once
// A folder waiting to be read, opened relative to its parent's open descriptor: no path is ever
// built or resolved in the walk, so it is fast and works at any depth, beyond PATH_MAX too.
//
// A folder with subfolders keeps its descriptor open until every subfolder has been opened. If
// too many descriptors are held, the folder closes it and keeps its parent instead, and its
// subfolders reopen it through the chain of names up to the nearest open ancestor.

#include <atomic>
#include <string>

struct DirNode {
    DirNode* parent = nullptr;  // null for a root, whose name is then its absolute path
    std::string name;
    int fd = -1;  // set once before any subfolder is queued, never changed after
    std::atomic<int> refs{1};  // the reader's own reference, plus one per subfolder made

    DirNode(DirNode* parentNode, std::string entryName);
};

namespace DirNodes {

// Caps the descriptors held at once (-1: the process's own budget). For tight environments and
// for testing the reopening path.
void setHeldLimit(int limit);
// Descriptors held right now.
int held();

DirNode* root(std::string absolutePath);
// A subfolder of `parent`, which gains a reference.
DirNode* child(DirNode* parent, const char* name, std::size_t length);

// Opens the node's folder (never following a final link); -1 with errno set on failure.
int open(DirNode* node);

// After the node's folder was read: keeps `fd` open for its subfolders when it has any, and the
// descriptor budget allows; otherwise closes it. Then drops the reader's reference.
void finish(DirNode* node, int fd, bool hasSubfolders);

// Drops one reference; at zero the node closes its descriptor, is freed, and lets go of its parent.
void release(DirNode* node);

}  // namespace DirNodes
