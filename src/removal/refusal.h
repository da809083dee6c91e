#pragma once
// Why a path may not be removed. Every refusal carries the path as the caller gave it, standardised.

#include <QString>

struct Refusal {
    enum class Kind { outside, protected_, missing, symlinkParent, inUse, empty, tooDeep, inTrash };

    Kind kind = Kind::outside;
    QString path;

    // The sentence shown to the user, with the home folder written as "~".
    QString description() const;

    bool operator==(const Refusal&) const = default;
};
