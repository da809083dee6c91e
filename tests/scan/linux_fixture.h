#pragma once
// What the tests of Linux-shaped homes share: a scan of the sandbox home that never reads this
// machine's system folders or asks its flatpak, and lookups in the result.

#include <gtest/gtest.h>

#include <QMutex>

#include "scan/scanner.h"
#include "support/files.h"
#include "support/linux_home.h"
#include "support/sandbox.h"

struct LinuxScanTest : ::testing::Test {
    QString system;  // stands in for "/"
    QString bin;  // first on PATH: a flatpak that runs nothing, unless a test writes another
    QByteArray savedPath, savedSystemRoot;

    void SetUp() override;
    void TearDown() override;
    // A flatpak on PATH whose `ps` lists `running`.
    void flatpakRunning(const QByteArray& running);

    struct Scanned {
        ScanData data;
        ScanResult result;
        QList<std::pair<qint64, QList<EarlyRow>>> early;
        // The rows of the report with the highest sequence number.
        QList<EarlyRow> lastEarly() const;
    };
    static constexpr qint64 diskUsed = 500'000'000'000;
    static Scanned scan();
};

const Finding* findingOf(const ScanResult& r, const QString& id);
// The names of a finding's parts, sorted; empty for none.
QStringList partNames(const Finding* f);
// Every part path of every finding.
QStringList allParts(const ScanResult& r);
qint64 systemRow(const ScanResult& r, const QString& name);
qint64 slice(const ScanResult& r, const QString& name);
