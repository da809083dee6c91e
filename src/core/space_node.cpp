#include "core/space_node.h"

#include <algorithm>

#include "core/checked.h"

namespace {

SpaceNode folderNode(const QString& parentPath, const QString& component) {
    SpaceNode n;
    n.name = component;
    n.path = parentPath + QLatin1Char('/') + component;
    n.isDir = true;
    return n;
}

// The first path component of `p` below `parentPath`.
QString nextComponent(const QString& parentPath, const QString& p) {
    const QString rest = p.mid(parentPath.size() + 1);
    const qsizetype slash = rest.indexOf(QLatin1Char('/'));
    return slash < 0 ? rest : rest.left(slash);
}

}  // namespace

bool SpaceNode::contains(const QString& p) const {
    return p == path || (p.size() > path.size() && p.startsWith(path) && p.at(path.size()) == QLatin1Char('/'));
}

qsizetype SpaceNode::childIndexFor(const QString& p) const {
    for (qsizetype i = 0; i < kids.size(); ++i)
        if (kids[i].contains(p)) return i;
    return -1;
}

const SpaceNode* SpaceNode::find(const QString& p) const {
    const SpaceNode* node = this;
    if (!node->contains(p)) return nullptr;
    while (node->path != p) {
        const qsizetype i = node->childIndexFor(p);
        if (i < 0) return nullptr;
        node = &node->kids[i];
    }
    return node;
}

SpaceNode* SpaceNode::find(const QString& p) {
    return const_cast<SpaceNode*>(std::as_const(*this).find(p));
}

void SpaceNode::sortBySize(QList<SpaceNode>& list) {
    std::stable_sort(list.begin(), list.end(),
                     [](const SpaceNode& a, const SpaceNode& b) { return a.bytes > b.bytes; });
}

// After one child's size changed: the children in size order again, equal sizes as they were.
void SpaceNode::keepSorted() { sortBySize(kids); }

void SpaceNode::prune(const QString& p, qint64 removed) {
    if (p == path || !contains(p)) return;
    const qsizetype i = childIndexFor(p);
    if (i >= 0) {
        if (kids[i].path == p) {
            kids.removeAt(i);
        } else {
            kids[i].prune(p, removed);
            keepSorted();
        }
    }
    bytes = std::max<qint64>(Checked::sub(bytes, removed), 0);
}

void SpaceNode::adjust(const QString& p, qint64 delta, bool inserts, bool leafIsDir) {
    if (!contains(p)) return;
    bytes = std::max<qint64>(Checked::add(bytes, delta), 0);
    if (p == path) return;
    const qsizetype i = childIndexFor(p);
    if (i >= 0) {
        kids[i].adjust(p, delta, inserts, leafIsDir);
        keepSorted();
        return;
    }
    if (!inserts) return;
    SpaceNode made = folderNode(path, nextComponent(path, p));
    if (made.path == p) made.isDir = leafIsDir;
    made.adjust(p, delta, true, leafIsDir);  // its size, and the folders below it down to `p`
    kids.append(std::move(made));
    keepSorted();
}

void SpaceNode::setKids(const QString& p, QList<SpaceNode> newKids, bool create) {
    if (!contains(p)) return;
    SpaceNode* node = this;
    while (node->path != p) {
        const qsizetype i = node->childIndexFor(p);
        if (i >= 0) {
            node = &node->kids[i];
            continue;
        }
        if (!create) return;
        node->kids.append(folderNode(node->path, nextComponent(node->path, p)));
        node = &node->kids.last();
    }
    // A listing comes largest first already: checked without copying a list another holder shares.
    const auto larger = [](const SpaceNode& a, const SpaceNode& b) { return a.bytes > b.bytes; };
    if (!std::is_sorted(newKids.cbegin(), newKids.cend(), larger)) sortBySize(newKids);
    if (create && node->bytes == 0) {
        qint64 sum = 0;
        for (const SpaceNode& k : newKids) sum = Checked::add(sum, k.bytes);
        node->bytes = sum;
    }
    node->kids = std::move(newKids);
}
