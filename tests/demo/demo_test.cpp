#include <gtest/gtest.h>

#include <QDir>

#include "demo/demo.h"
#include "scan/catalogue.h"
#include "scan/extras.h"
#include "scan/scanner.h"
#include "support/sandbox.h"

namespace {
const QDateTime now = QDateTime(QDate(2024, 6, 1), QTime(12, 0), Qt::UTC);
}

TEST(Demo, ADeterministicMachineWithSomethingForEveryRow) {
    Sandbox::clearHome();
    const ScanData data = Demo::scanData(now);
    EXPECT_EQ(Demo::scanData(now), data);
    const ScanResult r = Scanner::derive(data, Demo::volume());

    QStringList found;
    for (const Finding& f : r.findings) {
        found.append(f.id);
        EXPECT_GT(f.bytes, 0) << f.id.toStdString();
    }
    // The demonstration is a Mac: the rules and extras for Linux homes that follow the first 22 and 5
    // have nothing on it.
    for (const Catalogue::Rule& rule : Catalogue::rules().mid(0, 22))
        EXPECT_TRUE(found.contains(rule.id)) << rule.id.toStdString();
    for (const QString& id : Scanner::extraIDs().mid(0, 5)) EXPECT_TRUE(found.contains(id)) << id.toStdString();
    EXPECT_TRUE(found.contains("trash"));

    // System Data broken down fully.
    qint64 rows = 0;
    for (const SystemPart& p : r.system) rows += p.bytes;
    EXPECT_EQ(rows, r.systemTotal);

    // Invented, never read: the home folder of this run stays empty.
    EXPECT_TRUE(QDir(Sandbox::home()).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden));
}

TEST(Demo, HistoryIsNewestFirstAndTheSameEveryTime) {
    QDateTime previous = now.addDays(1);
    for (const HistoryEntry& e : Demo::history(now)) {
        EXPECT_LT(e.date, previous);  // newest first
        previous = e.date;
        EXPECT_FALSE(e.id.isNull());
    }
    EXPECT_EQ(Demo::history(now), Demo::history(now));
}
