#include "core/picks.h"

#include <QHash>

namespace {

QSet<QString> recentOnes(const QList<Part>& parts, const QDateTime& now) {
    QSet<QString> kept;
    for (const Part& p : parts)
        if (p.modified && p.modified->secsTo(now) < Picks::recent) kept.insert(p.path);
    return kept;
}

QSet<QString> notInstalledOnes(const QList<Part>& parts) {
    QSet<QString> kept;
    for (const Part& p : parts)
        if (!p.note.contains(QLatin1String(" is installed"))) kept.insert(p.path);
    return kept;
}

// Per device model (the name before its first space), the part with the newest date.
QSet<QString> newestPerDevice(const QList<Part>& parts) {
    QHash<QString, const Part*> newest;
    QList<QString> models;  // in the order first met, so the result does not depend on hashing
    for (const Part& p : parts) {
        const QString model = p.name.section(QLatin1Char(' '), 0, 0);
        auto it = newest.find(model);
        if (it == newest.end()) {
            newest.insert(model, &p);
            models.append(model);
            continue;
        }
        const Part* best = *it;
        const bool newer = p.modified && (!best->modified || *p.modified > *best->modified);
        if (newer) *it = &p;
    }
    QSet<QString> kept;
    for (const QString& m : models) kept.insert(newest.value(m)->path);
    return kept;
}

}  // namespace

QSet<QString> Picks::keptByDefault(const QString& ruleID, const QList<Part>& parts,
                                   const QDateTime& now) {
    if (ruleID == QLatin1String("derived") || ruleID == QLatin1String("archives"))
        return recentOnes(parts, now);
    if (ruleID == QLatin1String("installers")) return notInstalledOnes(parts);
    if (ruleID == QLatin1String("devicesupport")) return newestPerDevice(parts);
    return {};
}

std::optional<QString> Picks::keptNote(const QString& ruleID) {
    if (ruleID == QLatin1String("derived"))
        return QStringLiteral("Projects built in the last 7 days start unticked.");
    if (ruleID == QLatin1String("archives"))
        return QStringLiteral("Archives from the last 7 days start unticked.");
    if (ruleID == QLatin1String("devicesupport"))
        return QStringLiteral("The newest version for each device starts unticked.");
    if (ruleID == QLatin1String("installers"))
        return QStringLiteral("Installers for apps that aren't installed start unticked.");
    return std::nullopt;
}

QList<Part> Picks::chosen(const QString& ruleID, const QList<Part>& parts, bool rowTicked,
                          const QDateTime& now) const {
    if (!rowTicked) return {};
    const QSet<QString> kept = keptByDefault(ruleID, parts, now);
    QList<Part> out;
    for (const Part& p : parts) {
        if (never.contains(p.path) || off.contains(p.path)) continue;
        if (on.contains(p.path) || !kept.contains(p.path)) out.append(p);
    }
    return out;
}

void Picks::reset(const QList<Part>& parts) {
    for (const Part& p : parts) {
        off.remove(p.path);
        on.remove(p.path);
    }
}
