#include "model/dialogs.h"

#include <algorithm>

QList<Finding> Confirm::commands() const {
    QList<Finding> out;
    for (const Finding& f : findings)
        if (f.removal.isCommand()) out.append(f);
    return out;
}

bool SpaceStep::operator==(const SpaceStep& o) const {
    const auto same = [](const SpaceNode& a, const SpaceNode& b) { return a == b; };
    return std::equal(columns.begin(), columns.end(), o.columns.begin(), o.columns.end(), same) &&
           selection.has_value() == o.selection.has_value() && (!selection || same(*selection, *o.selection));
}
