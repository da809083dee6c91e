#include "scan/linux_fixture.h"

#include <sys/stat.h>

void LinuxScanTest::SetUp() {
    Sandbox::clearHome();
    system = Sandbox::scratch("system");
    bin = Sandbox::scratch("bin");
    savedPath = qgetenv("PATH");
    savedSystemRoot = qgetenv("QUARLE_SYSTEM_ROOT");
    qputenv("QUARLE_SYSTEM_ROOT", Files::bytes(system));
    qputenv("PATH", Files::bytes(bin) + ":" + savedPath);
    flatpakRunning("");
}

void LinuxScanTest::TearDown() {
    qputenv("PATH", savedPath);
    qputenv("QUARLE_SYSTEM_ROOT", savedSystemRoot);
}

void LinuxScanTest::flatpakRunning(const QByteArray& running) {
    Files::writeText(bin + "/flatpak", "#!/bin/sh\n[ \"$1\" = ps ] || exit 1\nprintf 'Application\\n" + running + "'\n");
    ::chmod(Files::bytes(bin + "/flatpak").constData(), 0755);
}

Scanned LinuxScanTest::scan() { return scanSandbox({"Disk", 2 * diskUsed, diskUsed, diskUsed}); }

qint64 systemRow(const ScanResult& r, const QString& name) {
    for (const SystemPart& p : r.system)
        if (p.name == name) return p.bytes;
    return 0;
}

qint64 slice(const ScanResult& r, const QString& name) {
    for (const DiskPart& p : r.strata)
        if (p.name == name) return p.bytes;
    return 0;
}
