#include "model/sentences.h"

#include "core/fmt.h"

namespace Sentences {

QString keepFor(int keepDays) {
    return keepDays < 1 ? QStringLiteral("until you empty it")
                        : QStringLiteral("for ") + Fmt::count(keepDays, QStringLiteral("day"));
}

QString cleared(bool freeNow, qint64 bytes, qsizetype protectedCount, qsizetype failedCount, int keepDays) {
    QString text = freeNow ? QStringLiteral("Freed %1.").arg(Fmt::bytes(bytes))
                           : QStringLiteral("Moved %1 to the Trash. History can restore it %2.")
                                 .arg(Fmt::bytes(bytes), keepFor(keepDays));
    if (protectedCount > 0) text += QStringLiteral(" Left %1 protected.").arg(protectedCount);
    if (failedCount > 0) text += QStringLiteral(" %1 couldn't move.").arg(failedCount);
    return text;
}

QString restored(int count, qsizetype notBack) {
    if (notBack == 0) return QStringLiteral("Put back %1 where they were.").arg(Fmt::count(count, QStringLiteral("item")));
    return QStringLiteral("Put back %1. %2 couldn't go back: something is in their place.").arg(count).arg(notBack);
}

QString emptying(qint64 bytes) { return QStringLiteral("Emptying %1 from the Trash…").arg(Fmt::bytes(bytes)); }

QString emptied(qint64 bytes) { return QStringLiteral("Emptied %1. It's free space now.").arg(Fmt::bytes(bytes)); }

QString nothingTickedIn(const QString& title) { return QStringLiteral("Nothing in ") + title + QStringLiteral(" is ticked."); }

QString nothingOfTicked(const QString& name) { return QStringLiteral("Nothing of ") + name + QStringLiteral(" is ticked."); }

QString quitFirst(const QString& appName) {
    return QStringLiteral("Quit ") + appName + QStringLiteral(" first, then uninstall it.");
}

QString rowHidden(const QString& title) {
    return title + QStringLiteral(" won't be shown again. Settings can bring it back.");
}

QString neverCleared(const QString& name) {
    return name + QStringLiteral(" will never be cleared. Settings can change that.");
}

QString emptyEntryTitle(const QString& entryTitle) {
    return QStringLiteral("Empty ") + entryTitle + QStringLiteral(" for good?");
}

QString emptyEntryMessage(qint64 bytes) {
    return Fmt::bytes(bytes) + QStringLiteral(" will be deleted from the Trash. History won't be able to restore it.");
}

QString emptyAllTitle(qint64 bytes) { return QStringLiteral("Empty %1 from the Trash?").arg(Fmt::bytes(bytes)); }

QString emptyAllMessage(qsizetype items) {
    return Fmt::count(items, QStringLiteral("item")) +
           QStringLiteral(" Quarle moved will be deleted for good. History won't be able to restore them. "
                          "Nothing else in your Trash is touched.");
}

QString keepDaysTitle(int days) {
    return QStringLiteral("Keep things for ") + Fmt::count(days, QStringLiteral("day")) + QLatin1Char('?');
}

QString keepDaysMessage(qsizetype entries, qint64 bytes) {
    return QStringLiteral("%1 (%2) %3 been in the Trash longer than that. They'll be emptied now and History "
                          "won't be able to restore them.")
        .arg(Fmt::count(entries, QStringLiteral("clean")), Fmt::bytes(bytes),
             entries == 1 ? QStringLiteral("has") : QStringLiteral("have"));
}

QString keepDaysButton(int days) {
    return QStringLiteral("Empty them and keep ") + Fmt::count(days, QStringLiteral("day"));
}

}  // namespace Sentences
