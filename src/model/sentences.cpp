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
    return restored(count, QStringList(notBack, QStringLiteral("something is in their place")), {});
}

QString restored(int count, const QStringList& reasons, const QStringList& foldersIn) {
    QString text;
    if (reasons.isEmpty()) {
        text = count == 1 ? QStringLiteral("Put back 1 item where it was.")
                          : QStringLiteral("Put back %1 where they were.").arg(Fmt::count(count, QStringLiteral("item")));
    } else {
        QStringList distinct;
        for (const QString& r : reasons)
            if (!distinct.contains(r)) distinct.append(r);
        text = QStringLiteral("Put back %1. %2 couldn't go back: %3.")
                   .arg(count)
                   .arg(reasons.size())
                   .arg(distinct.join(QStringLiteral("; ")));
    }
    for (const QString& title : foldersIn)
        text += QStringLiteral(" Their folder is still in the Trash with \"%1\"; a private one was made in its place.")
                    .arg(title);
    return text;
}

QString whyNotBack(Trash::Back why) {
    switch (why) {
        case Trash::Back::occupied: return QStringLiteral("something is in their place");
        case Trash::Back::missing: return QStringLiteral("they are no longer in the Trash");
        case Trash::Back::noTrash: return QStringLiteral("the drive that holds them is not connected");
        case Trash::Back::folderUnusable: return QStringLiteral("their folder can't be made or written");
        case Trash::Back::beingEmptied: return QStringLiteral("they are being emptied from the Trash");
        case Trash::Back::done:
        case Trash::Back::failed: break;
    }
    return QStringLiteral("they could not be moved");
}

QString emptiedPartly(qint64 bytes, qsizetype left) {
    return QStringLiteral("Emptied %1. %2 couldn't be deleted and stay in the Trash.")
        .arg(Fmt::bytes(bytes), Fmt::count(left, QStringLiteral("item")));
}

QString movedAway(qsizetype count) {
    return QStringLiteral("%1 moved away by something else meanwhile; Quarle did nothing to them.")
        .arg(Fmt::count(count, QStringLiteral("item")));
}

QString heldElsewhere(qint64 bytes) {
    return QStringLiteral("%1 of it is shared with files that stay, so removing it won't free that.").arg(Fmt::bytes(bytes));
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
