#pragma once
// One node of the home folder's size tree. Children are kept largest first.

#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

struct SpaceNode {
    QString name;
    QString path;  // absolute
    qint64 bytes = 0;
    bool isDir = false;
    QString note;
    std::optional<QDateTime> modified;
    QList<SpaceNode> kids;

    const QString& id() const { return path; }
    bool operator==(const SpaceNode&) const = default;

    // True when `p` is this node's path or lies below it.
    bool contains(const QString& p) const;

    // The node for `p`, descending through the first child on the way; null when the tree does
    // not hold it. The pointer is valid until the tree changes.
    const SpaceNode* find(const QString& p) const;
    SpaceNode* find(const QString& p);

    // After `p` was cleared: drops its node and takes `removed` bytes off every folder above it
    // (never below 0). Does nothing unless `p` lies strictly below this node.
    void prune(const QString& p, qint64 removed);

    // After `p` came back or grew: adds `delta` to every node on the way down to it (never below
    // 0). When the tree does not hold `p` and `inserts` is true, the missing nodes are made, the
    // last one a folder when `leafIsDir`.
    void adjust(const QString& p, qint64 delta, bool inserts, bool leafIsDir = false);

    // Replaces the children of the node for `p` with `newKids`, largest first. With `create`, the
    // missing folders on the way are made, and a node without a size takes the children's sum.
    void setKids(const QString& p, QList<SpaceNode> newKids, bool create);

    // Orders `list` largest first, keeping the given order among equal sizes.
    static void sortBySize(QList<SpaceNode>& list);

private:
    qsizetype childIndexFor(const QString& p) const;
    void keepSorted();
};
