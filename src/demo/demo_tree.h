#pragma once
// Writing the demonstration home down as nested folders with sizes and ages.

#include <QDateTime>
#include <QList>
#include <QString>

#include "core/space_node.h"

namespace DemoTree {

constexpr qint64 GB = 1'000'000'000;
constexpr qint64 MB = 1'000'000;

// A folder or file of the invented home; a folder without kids stands for one the walk summed.
struct Item {
    QString name;
    qint64 bytes = 0;  // folders with kids: the kids' sum
    double ageDays = 30;
    bool isDir = true;
    QList<Item> kids;
};

Item folder(const QString& name, QList<Item> kids, double ageDays = 30);
Item summed(const QString& name, qint64 bytes, double ageDays = 30);
Item file(const QString& name, qint64 bytes, double ageDays = 30);

// The size tree of `item` placed at `path`, dates counted back from `now`.
SpaceNode build(const Item& item, const QString& path, const QDateTime& now);
QDateTime daysBefore(const QDateTime& now, double days);

}  // namespace DemoTree
