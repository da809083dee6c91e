#pragma once
// Which applications are running now, by identifier. On Linux these are the Flatpak sandboxes:
// their application ids play the part that bundle identifiers play on macOS.

#include <QSet>
#include <QString>

namespace RunningApps {

// The ids of the running Flatpak sandboxes; empty when flatpak is not installed or fails.
QSet<QString> ids();

// The ids in the output of `flatpak ps --columns=application`: one per line, a header or blank
// line skipped.
QSet<QString> parseFlatpakPs(const QString& output);

}  // namespace RunningApps
