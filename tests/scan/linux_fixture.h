#pragma once
// What the tests of Linux-shaped homes share: a scan of the sandbox home that never reads this
// machine's system folders or asks its flatpak, and lookups in the result.

#include <gtest/gtest.h>


#include "scan/scan_fixture.h"
#include "scan/scanner.h"
#include "support/files.h"
#include "support/linux_apps.h"
#include "support/linux_home.h"
#include "support/sandbox.h"

struct LinuxScanTest : ::testing::Test {
    QString system;  // stands in for "/"
    QString bin;  // first on PATH: a flatpak that runs nothing, unless a test writes another
    std::unique_ptr<LinuxFixtures::ScopedEnv> rootEnv, pathEnv;  // both put back after the test

    void SetUp() override;
    // A flatpak on PATH whose `ps` lists `running`.
    void flatpakRunning(const QByteArray& running);

    static constexpr qint64 diskUsed = 500'000'000'000;
    static Scanned scan();
};

qint64 systemRow(const ScanResult& r, const QString& name);
qint64 slice(const ScanResult& r, const QString& name);
