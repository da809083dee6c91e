#pragma once
// The model's two kinds of pending dialog (a removal confirmation and a yes/no question), one
// snapshot of the Storage page's browsing, and the report a finished action leaves for whoever
// waits on it.

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QUuid>
#include <functional>
#include <optional>

#include "core/records.h"
#include "core/space_node.h"
#include "removal/remover.h"

// A removal waiting for the user's yes: findings narrowed to their chosen parts, or plain paths.
struct Confirm {
    QUuid id;
    QString title;
    QList<Finding> findings;
    QStringList paths;  // what is not a finding: Storage items, an app and its leftovers
    qint64 bytes = 0;
    QSet<QString> apps;  // application bundles among the paths, which may lie outside the home
    qint64 heldElsewhere = 0;  // of `bytes`, what other files hold too: removing leaves it on the disk

    // The findings removed by running a command rather than by moving files.
    QList<Finding> commands() const;
    bool operator==(const Confirm&) const = default;
};

// A yes/no question; confirming runs `action` on the main thread.
struct Ask {
    QUuid id;
    QString title;
    QString message;
    QString button;
    std::function<void()> action;

    // Two questions are the same when they say the same; the action cannot be compared.
    bool operator==(const Ask& o) const {
        return id == o.id && title == o.title && message == o.message && button == o.button;
    }
};

// The Storage page's columns and selection at one moment, for going back and forward.
struct SpaceStep {
    QList<SpaceNode> columns;
    std::optional<SpaceNode> selection;

    // Written out: a defaulted one would compare lists of a recursive record, which Qt's
    // container comparison cannot decide at this point.
    bool operator==(const SpaceStep&) const;
};

// What one removal, restore or emptying did, beyond its toast.
struct ActionReport {
    enum class Kind { removal, restore, emptying, keepDays };

    Kind kind = Kind::removal;
    QString toast;
    std::optional<QUuid> entry;        // the History entry a removal recorded
    qint64 bytes = 0;                  // moved, freed, put back or emptied
    QList<Remover::Refused> refused;   // left alone by the safety checks
    QStringList failed;                // paths that could not move, titles of failed commands
    QStringList notBack;               // originals a restore could not put back
    bool saved = true;                 // false when History could not be written

    static ActionReport of(Kind kind, QString toast = {}) {
        ActionReport r;
        r.kind = kind;
        r.toast = std::move(toast);
        return r;
    }
    bool ok() const { return refused.isEmpty() && failed.isEmpty() && notBack.isEmpty() && saved; }
    bool operator==(const ActionReport&) const = default;
};
