#pragma once
// Every sentence the model shows in a toast or a question, built from fixed pieces and Fmt.

#include <QString>
#include <QStringList>

#include "removal/trash.h"

namespace Sentences {

inline const QString working = QStringLiteral("Working…");
inline const QString demoRemoved = QStringLiteral("Demo Mac: nothing was removed.");
inline const QString demoRestored = QStringLiteral("Demo Mac: nothing to restore.");
inline const QString demoEmptied = QStringLiteral("Demo Mac: nothing was emptied.");
inline const QString accessGranted = QStringLiteral("Full Disk Access is on. Scanning again.");
inline const QString emptyButton = QStringLiteral("Empty for good");

// "for 7 days", or "until you empty it" when items are kept until the user empties them.
QString keepFor(int keepDays);

// The toast after a removal: what was moved or freed, then how many were protected or stuck.
QString cleared(bool freeNow, qint64 bytes, qsizetype protectedCount, qsizetype failedCount, int keepDays);
QString restored(int count, qsizetype notBack);
// `reasons`: why items did not go back, one phrase each; `foldersIn`: titles of the entries that
// still hold folders that were made again.
QString restored(int count, const QStringList& reasons, const QStringList& foldersIn);
// Why one item did not go back, as a phrase.
QString whyNotBack(Trash::Back why);
// What an emptying did when `left` items (or parts of them) could not be deleted.
QString emptiedPartly(qint64 bytes, qsizetype left);
// Items that something else moved between the check and the move.
QString movedAway(qsizetype count);
inline const QString historyNotSaved = QStringLiteral(
    "History could not be saved (is the disk full?). The items are in the Trash, and Quarle will find them "
    "again once it can write its History.");
inline const QString settingsNotSaved =
    QStringLiteral("Quarle couldn't save its settings (is the disk full?), so this change will not last.");
// A confirmation's bytes that other files hold too.
QString heldElsewhere(qint64 bytes);
QString emptying(qint64 bytes);
QString emptied(qint64 bytes);

QString nothingTickedIn(const QString& title);
QString nothingOfTicked(const QString& name);
QString quitFirst(const QString& appName);
QString rowHidden(const QString& title);
QString neverCleared(const QString& name);

// The questions of History and Settings.
QString emptyEntryTitle(const QString& entryTitle);
QString emptyEntryMessage(qint64 bytes);
QString emptyAllTitle(qint64 bytes);
QString emptyAllMessage(qsizetype items);
QString keepDaysTitle(int days);
QString keepDaysMessage(qsizetype entries, qint64 bytes);
QString keepDaysButton(int days);

}  // namespace Sentences
