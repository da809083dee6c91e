#include "scan/linux_fixture.h"

void LinuxScanTest::SetUp() {
    Sandbox::clearHome();
    system = Sandbox::scratch("system");
    bin = Sandbox::scratch("bin");
    rootEnv = std::make_unique<LinuxFixtures::ScopedEnv>("QUARLE_SYSTEM_ROOT", Files::bytes(system));
    pathEnv = std::make_unique<LinuxFixtures::ScopedEnv>("PATH", Files::bytes(bin) + ":" + qgetenv("PATH"));
    flatpakRunning("");
}

void LinuxScanTest::flatpakRunning(const QByteArray& running) {
    LinuxFixtures::script(bin, "flatpak", "[ \"$1\" = ps ] || exit 1\nprintf 'Application\\n" + running + "'\n");
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
