#pragma once
// How a row of a confirmation becomes paths to remove.

#include <QList>

#include "core/records.h"
#include "core/space_node.h"

namespace Targets {

// One path a confirmation removes, with the row and part it stands for.
struct Target {
    Finding finding;
    Part part;

    bool operator==(const Target&) const = default;
};

// The finding's parts (already narrowed to the chosen ones), or its own paths when it has none.
// A path's size comes from `tree` where the tree holds it.
QList<Target> of(const Finding& finding, const SpaceNode* tree);

// A plain path that stands for no row (a Storage item, an app and its leftovers).
Target plain(const QString& path, qint64 bytes);

}  // namespace Targets
