#pragma once
// What starts at login or boot: the launchd jobs of this user ("Library/LaunchAgents" in the home)
// and of every user ("/Library/LaunchAgents", "/Library/LaunchDaemons"), with whether launchd has
// them disabled, the app they belong to, and whether their program is still there; and on a Linux
// desktop its autostart entries and systemd user services (linux_login_items.h).

#include <QHash>
#include <QList>
#include <QString>

#include "apps/system_folders.h"
#include "core/records.h"

namespace LoginItems {

// Who signed a program. Linux has no code signatures.
inline const QString notSigned = QStringLiteral("Not signed");

// The output of `launchctl print-disabled`: label → true when disabled, false when explicitly
// enabled. Only the "disabled services" block counts. macOS up to 12 writes "=> true"/"=> false",
// later versions "=> disabled"/"=> enabled"; the label is the text between the double quotes.
QHash<QString, bool> parseDisabled(const QString& output);

// Runs `launchctl print-disabled gui/UID` (at most 5 seconds) and parses it; empty when it cannot
// be run, as on a machine without launchd.
QHash<QString, bool> disabledLabels(const QString& launchctl);

// Every job whose property list can be read and has a label, and every Linux item, this user's
// first, then by name. Damaged files and property lists without a label are left out.
QList<LoginItem> list(const SystemFolders& folders = SystemFolders::current());

}  // namespace LoginItems
