#pragma once
// The system tools a scan asks, run exactly as written. Where a tool is missing, fails, or runs
// past its time, the probe comes back empty. Parsing their output is pure.

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

#include "core/records.h"

namespace Scanner {

const QStringList& snapshotCommand();
const QStringList& simulatorCommand();

// Names of the local Time Machine snapshots in `tmutil listlocalsnapshots` output.
QStringList parseSnapshots(const QString& text);
QStringList localSnapshots(const QStringList& command = snapshotCommand(), double timeoutSeconds = 10);

// One simulator that can no longer run.
struct Simulator {
    QString name;
    QString runtime;  // as people write it: "iOS 16.0"
    QString dataPath;

    bool operator==(const Simulator&) const = default;
};
// The unavailable simulators in `simctl list devices unavailable -j` output that have a data folder.
QList<Simulator> parseUnavailableSimulators(const QString& text);
// Their row, each data folder a part; nothing when there are none.
std::optional<Finding> unavailableSimulators(const QStringList& command = simulatorCommand(),
                                             double timeoutSeconds = 15);

}  // namespace Scanner
