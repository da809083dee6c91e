#pragma once
// Everything the model asks of the machine, in one record: the engines it runs in the background,
// the running apps, the clock and its timers' periods. The real ones by default; a test swaps in
// its own (a scan that reports early rows on cue, a clock set to next week) without touching the
// model's logic.

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>
#include <chrono>
#include <functional>
#include <optional>

#include "apps/app_scanner.h"
#include "core/records.h"
#include "core/space_node.h"
#include "measure/progress.h"
#include "measure/walk_types.h"
#include "scan/early_rows.h"
#include "scan/scan_data.h"

struct ModelServices {
    std::function<ScanData(WalkProgress&, const Cancelled&, const EarlyReport&)> scan;
    std::function<ScanResult(const ScanData&, const Volume&)> derive;
    std::function<Volume()> volume;
    std::function<std::optional<bool>()> fullDiskAccess;
    std::function<AppScanner::Result(const Cancelled&)> scanApps;
    std::function<QList<LoginItem>()> loginItems;
    // Identifiers of the apps running now.
    std::function<QSet<QString>()> runningApps;
    // The executables the user's processes run now (a running AppImage is one of them).
    std::function<QSet<QString>()> runningFiles;
    // The sized contents of a folder the scan did not descend into.
    std::function<QList<SpaceNode>(const QString&, const Cancelled&)> listFolder;
    std::function<QDateTime()> now;

    std::chrono::milliseconds progressEvery{250};
    std::chrono::milliseconds expiryEvery{std::chrono::hours(1)};
    std::chrono::milliseconds followUpAfter{2000};  // the second refresh after an action

    // The machine's own engines and clock.
    static ModelServices real();
};

// "QUARLE_SCAN_PAUSE": seconds to wait before a finished scan is shown (for pictures of the
// scanning state); nothing unless it is a number above 0.
std::optional<double> scanPause(const QString& value);
