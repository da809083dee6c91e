#pragma once
// The user's overrides of the default ticks, and the per-rule defaults for a row's parts.

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>
#include <optional>

#include "core/records.h"

enum class TickState { off, some, all };

struct Picks {
    QSet<QString> off;    // part paths the user unticked
    QSet<QString> on;     // part paths the user ticked against the default
    QSet<QString> never;  // part paths the user excluded for good

    static constexpr qint64 recent = 604800;  // seconds: 7 days

    // Paths of the parts that start unticked for the rule.
    static QSet<QString> keptByDefault(const QString& ruleID, const QList<Part>& parts,
                                       const QDateTime& now);
    // The hint shown under a row whose rule keeps some parts by default.
    static std::optional<QString> keptNote(const QString& ruleID);

    // The parts a clear of the row removes, in the parts' order.
    QList<Part> chosen(const QString& ruleID, const QList<Part>& parts, bool rowTicked,
                       const QDateTime& now) const;

    // Drops the user's tick overrides for these parts; `never` stays.
    void reset(const QList<Part>& parts);

    bool operator==(const Picks&) const = default;
};
