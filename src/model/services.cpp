#include "model/services.h"

#include "apps/login_items.h"
#include "measure/walker.h"
#include "platform/running_apps.h"
#include "platform/running_programs.h"
#include "scan/access.h"
#include "scan/scanner.h"

ModelServices ModelServices::real() {
    ModelServices s;
    s.scan = [](WalkProgress& progress, const Cancelled& cancelled, const EarlyReport& early) {
        return Scanner::scan(progress, cancelled, early);
    };
    s.derive = [](const ScanData& data, const Volume& volume) { return Scanner::derive(data, volume); };
    s.volume = [] { return Scanner::volume(); };
    s.fullDiskAccess = [] { return Access::fullDisk(); };
    s.scanApps = [](const Cancelled& cancelled) { return AppScanner::scan(cancelled); };
    s.loginItems = [] { return LoginItems::list(); };
    s.runningApps = [] { return RunningApps::ids(); };
    s.runningFiles = [] {
        QSet<QString> files;
        for (const RunningPrograms::Program& p : RunningPrograms::list())
            if (!p.exe.isEmpty()) files.insert(p.exe);
        return files;
    };
    // Storage lists everything in a folder: the skip rules of the catalogue only keep a row's
    // bytes from being offered twice, and Storage offers nothing.
    s.listFolder = [](const QString& path, const Cancelled& cancelled) { return Walker::children(path, cancelled); };
    s.now = [] { return QDateTime::currentDateTimeUtc(); };
    return s;
}

std::optional<double> scanPause(const QString& value) {
    bool ok = false;
    const double seconds = value.trimmed().toDouble(&ok);
    if (!ok || !(seconds > 0) || seconds > 86400) return std::nullopt;  // also refuses NaN and inf
    return seconds;
}
