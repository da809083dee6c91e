#include "demo/demo_tree.h"

#include "core/checked.h"

namespace DemoTree {

Item folder(const QString& name, QList<Item> kids, double ageDays) { return {name, 0, ageDays, true, std::move(kids)}; }
Item summed(const QString& name, qint64 bytes, double ageDays) { return {name, bytes, ageDays, true, {}}; }
Item file(const QString& name, qint64 bytes, double ageDays) { return {name, bytes, ageDays, false, {}}; }

QDateTime daysBefore(const QDateTime& now, double days) { return now.addSecs(-qint64(days * 86400)); }

SpaceNode build(const Item& item, const QString& path, const QDateTime& now) {
    SpaceNode n;
    n.name = item.name;
    n.path = path;
    n.isDir = item.isDir;
    n.modified = daysBefore(now, item.ageDays);
    n.bytes = item.bytes;
    for (const Item& kid : item.kids) {
        n.kids.append(build(kid, path + QLatin1Char('/') + kid.name, now));
        n.bytes = Checked::add(n.bytes, n.kids.last().bytes);
    }
    SpaceNode::sortBySize(n.kids);
    return n;
}

}  // namespace DemoTree
