// The scan lifecycle through the model's own event loop: restarts, early rows, removals during a
// scan, quick re-derivations, default ticks across results, expiry and Full Disk Access.

#include <gtest/gtest.h>

#include <QMetaObject>

#include "core/home.h"
#include "model_fixture.h"
#include "removal/remover.h"
#include "scan/scanner.h"
#include "support/files.h"
#include "support/mac_home.h"
#include "support/sandbox.h"

namespace {

using namespace ModelTest;

EarlyRow early(const QString& id, qint64 bytes) { return {id, id, Bucket::now, bytes, false}; }

// Lets everything already queued to the model land: a call queued now runs after them.
void flushQueued(Model& model) {
    bool landed = false;
    QMetaObject::invokeMethod(&model, [&] { landed = true; }, Qt::QueuedConnection);
    ASSERT_TRUE(waitFor([&] { return landed; }));
}

class ScanLifecycle : public ::testing::Test {
protected:
    void SetUp() override { Sandbox::clearHome(); }
    Machine machine;
    Scripted script;
};

TEST_F(ScanLifecycle, StartScansAFixtureHomeAndTicksTheSuggestedRows) {
    MacHome(Sandbox::home(), *machine.clock).everything();
    Model model(machine.services());
    int shows = 0;
    QObject::connect(&model, &Model::scanChanged, [&] { ++shows; });
    model.start();
    EXPECT_TRUE(model.scanning());
    ASSERT_TRUE(settle(model));
    ASSERT_TRUE(model.scan());
    EXPECT_EQ(shows, 1);
    EXPECT_EQ(model.volume(), disk);
    EXPECT_EQ(model.fullDiskAccess(), std::optional<bool>(true));
    EXPECT_TRUE(model.showWelcome());
    // Which rows start ticked, and their figures in Storage: DefaultTicks below and the Storage tests.
    EXPECT_TRUE(model.ticked().contains("caches"));
}

TEST_F(ScanLifecycle, ARestartedScanLeavesExactlyTheSecondOnesResult) {
    auto seen = std::make_shared<QList<Cancelled>>();
    auto lock = std::make_shared<QMutex>();
    *script.during = [seen, lock](const EarlyReport&, const Cancelled& cancelled) {
        QMutexLocker guard(lock.get());
        seen->append(cancelled);
    };
    Model model(script.services(machine));
    int shows = 0;
    QObject::connect(&model, &Model::scanChanged, [&] { ++shows; });
    model.landings().hold(Job::scan);
    model.rescan(false);
    ASSERT_TRUE(waitFor([&] { return model.landings().waiting(Job::scan) == 1; }));
    const QUuid first = model.scanToken();
    model.rescan(false);
    EXPECT_EQ(model.scanToken(), first) << "a scan without restart waits for the running one";
    model.rescan(true);
    EXPECT_NE(model.scanToken(), first);
    ASSERT_TRUE(waitFor([&] { return model.landings().waiting(Job::scan) == 2; }));
    EXPECT_EQ(*script.scans, 2);
    {
        QMutexLocker guard(lock.get());
        EXPECT_TRUE(seen->at(0)()) << "the first scan was told to stop";
        EXPECT_FALSE(seen->at(1)());
    }
    model.landings().release(Job::scan, 0);  // the first scan, late
    EXPECT_FALSE(model.scan());
    EXPECT_TRUE(model.scanning());
    model.landings().release(Job::scan, 0);
    ASSERT_TRUE(model.scan());
    EXPECT_EQ(model.scan()->files, 2);
    EXPECT_FALSE(model.scanning());
    EXPECT_EQ(shows, 1);

    // The newer one landing first: the older one, arriving after it, changes nothing.
    model.rescan(false);
    ASSERT_TRUE(waitFor([&] { return model.landings().waiting(Job::scan) == 1; }));
    model.rescan(true);
    ASSERT_TRUE(waitFor([&] { return model.landings().waiting(Job::scan) == 2; }));
    model.landings().release(Job::scan, 1);
    EXPECT_EQ(model.scan()->files, 4);
    model.landings().release(Job::scan, 0);
    EXPECT_EQ(model.scan()->files, 4);
    EXPECT_FALSE(model.scanning());
    EXPECT_EQ(shows, 2);
}

TEST_F(ScanLifecycle, EarlyRowsOutOfOrderLateOrFromAnOlderScanAreIgnored) {
    auto stashed = std::make_shared<EarlyReport>();
    *script.during = [stashed](const EarlyReport& report, const Cancelled&) {
        if (*stashed) return;  // only the first scan reports
        *stashed = report;
        report(1, {early("caches", 10)});
        report(2, {early("caches", 20), early("logs", 5)});
    };
    Model model(script.services(machine));
    model.landings().hold(Job::scan);
    model.landings().hold(Job::early);
    model.rescan(false);
    ASSERT_TRUE(waitFor([&] { return model.landings().waiting(Job::early) == 2; }));
    model.landings().release(Job::early, 1);  // sequence 2 first
    EXPECT_EQ(model.early(), (QList<EarlyRow>{early("caches", 20), early("logs", 5)}));
    EXPECT_EQ(model.earlySeq(), 2);
    model.landings().release(Job::early, 0);  // then the older sequence 1
    EXPECT_EQ(model.early(), (QList<EarlyRow>{early("caches", 20), early("logs", 5)}));
    EXPECT_EQ(model.earlySeq(), 2);

    model.landings().letGo(Job::early);
    ASSERT_TRUE(waitFor([&] { return model.landings().waiting(Job::scan) == 1; }));
    model.landings().release(Job::scan);
    EXPECT_TRUE(model.early().isEmpty()) << "a finished scan clears its early rows";
    (*stashed)(3, {early("caches", 30)});  // late: after the scan ended
    flushQueued(model);
    EXPECT_TRUE(model.early().isEmpty());

    model.rescan(false);  // a second scan, still running
    ASSERT_TRUE(waitFor([&] { return model.landings().waiting(Job::scan) == 1; }));
    EXPECT_EQ(model.earlySeq(), 0);
    (*stashed)(9, {early("caches", 90)});  // the first scan's callback, after a restart
    flushQueued(model);
    EXPECT_TRUE(model.early().isEmpty());
    EXPECT_EQ(model.earlySeq(), 0);
    model.landings().releaseAll(Job::scan);
}

TEST_F(ScanLifecycle, ProgressIsCopiedOnTheTimer) {
    script.files = 7;
    ModelServices services = script.services(machine);
    services.progressEvery = std::chrono::milliseconds(1);
    Model model(services);
    model.landings().hold(Job::scan);
    model.rescan(false);
    EXPECT_EQ(model.scannedFiles(), 0);
    ASSERT_TRUE(waitFor([&] { return model.scannedFiles() == 7 && model.scannedBytes() == 7000; }));
    const auto progressTimers = [&] {
        int n = 0;
        for (const QTimer* t : model.findChildren<QTimer*>()) n += t->isActive() && t->interval() == 1;
        return n;
    };
    EXPECT_EQ(progressTimers(), 1);
    ASSERT_TRUE(waitFor([&] { return model.landings().waiting(Job::scan) == 1; }));  // the walk has returned
    model.landings().releaseAll(Job::scan);
    EXPECT_EQ(progressTimers(), 0) << "the finished scan's timer is gone";
}

TEST_F(ScanLifecycle, ARemovalDuringAScanEndsInANewScanWhileTheOldResultStays) {
    MacHome(Sandbox::home(), *machine.clock).everything();
    Model model(machine.services());
    model.start();
    ASSERT_TRUE(settle(model));
    const ScanResult before = *model.scan();
    const Finding logs = shown(model, "logs");
    ASSERT_GT(logs.bytes, 0);

    model.landings().hold(Job::scan);
    model.rescan(false);
    const QUuid running = model.scanToken();
    ASSERT_TRUE(waitFor([&] { return model.landings().waiting(Job::scan) == 1; }));
    model.askClean(logs);
    ASSERT_TRUE(model.confirm());
    performed(model);
    EXPECT_TRUE(model.editedDuringScan());
    EXPECT_FALSE(Files::exists(Home::at("Library/Logs/install.log")));
    // The old result stays, without what was cleared, until a scan that saw the change lands.
    ASSERT_TRUE(waitFor([&] { return shown(model, "logs").bytes == 0; }));
    EXPECT_EQ(model.scan()->date, before.date);
    EXPECT_LT(model.scan()->total(Bucket::now), before.total(Bucket::now));

    model.landings().release(Job::scan);  // the scan that ran during the removal
    EXPECT_TRUE(model.scanning()) << "it was repeated, not shown";
    EXPECT_NE(model.scanToken(), running);
    EXPECT_EQ(model.scan()->date, before.date);
    model.landings().letGo(Job::scan);
    model.landings().releaseAll(Job::scan);  // in case the new scan already landed
    ASSERT_TRUE(settle(model));
    EXPECT_NE(model.scan()->date, before.date);
    EXPECT_EQ(shown(model, "logs").bytes, 0);
    EXPECT_FALSE(model.editedDuringScan());
}

TEST_F(ScanLifecycle, TwoQuickDerivationsShowOnlyTheSecond) {
    Model model(script.services(machine));
    model.rescan(false);
    ASSERT_TRUE(settle(model));
    int shows = 0;
    QObject::connect(&model, &Model::scanChanged, [&] { ++shows; });
    model.landings().hold(Job::derive);
    // Each request takes the disk's figures of its moment, so the results tell the two apart.
    for (int oldestFirst : {0, 1}) {
        machine.disk->free = 1;
        model.refreshNumbers();
        machine.disk->free = 2;
        model.refreshNumbers();
        ASSERT_TRUE(waitFor([&] { return model.landings().waiting(Job::derive) == 2; }));
        // Which one the pool finishes first is its own affair: either way only the second shows.
        model.landings().release(Job::derive, oldestFirst ? 0 : 1);
        model.landings().release(Job::derive, 0);
        EXPECT_EQ(model.scan()->volume.free, 2);
        EXPECT_EQ(shows, oldestFirst + 1);
    }
    EXPECT_EQ(model.deriveSeq(), 5);
}

TEST_F(ScanLifecycle, DefaultTicksKeepTheUsersChoicesWithinARunAndResetAfterARestart) {
    const QDateTime now = *machine.clock;
    const QString home = Home::path();
    script.result->findings = {row("a", Bucket::now, {part(home + "/a", 10, now)}),
                               row("b", Bucket::now, {part(home + "/b", 10, now)}),
                               row("cmd", Bucket::now, {part(home + "/sims", 10, now)}, Removal::command({"true"})),
                               row("listed", Bucket::now, {part(home + "/l", 10, now)}, Removal::none()),
                               row("c", Bucket::call, {part(home + "/c", 10, now)})};
    {
        Model model(script.services(machine));
        model.start();
        ASSERT_TRUE(settle(model));
        EXPECT_EQ(model.ticked(), (QSet<QString>{"a", "b", "cmd"}));
        model.toggle(shown(model, "a"));
        model.toggle(shown(model, "c"));
        model.toggle(shown(model, "listed"));  // only listed: it cannot be ticked
        EXPECT_EQ(model.ticked(), (QSet<QString>{"b", "c", "cmd"}));

        const int before = *script.derivations;
        model.rederive();
        ASSERT_TRUE(waitFor([&] { return model.scan()->seconds > before; }));
        EXPECT_EQ(model.ticked(), (QSet<QString>{"b", "c", "cmd"}));

        script.result->findings.removeAt(1);  // b is gone from the next result
        model.rescan(false);
        ASSERT_TRUE(settle(model));
        EXPECT_EQ(model.ticked(), (QSet<QString>{"c", "cmd"})) << "a stays unticked for the rest of the run";
    }
    Model restarted(script.services(machine));
    restarted.start();
    ASSERT_TRUE(settle(restarted));
    EXPECT_EQ(restarted.ticked(), (QSet<QString>{"a", "cmd"}));
    EXPECT_TRUE(restarted.unticked().isEmpty());
}

TEST_F(ScanLifecycle, ExpiryAtStartUpAndOnTheHourlyTimer) {
    const QString home = Home::path();
    // The first was moved eight days before the clock, the second three.
    const QDateTime now = *machine.clock;
    QList<HistoryEntry> entries;
    {
        HistoryStore store;
        for (const auto& [name, days] : {std::pair{"old", 8}, std::pair{"recent", 3}}) {
            Files::makeDirs(home + "/Library/Caches/" + name);
            Files::write(home + "/Library/Caches/" + name + "/blob", 10'000);
            entries.append(Remover::trash({home + "/Library/Caches/" + name}, name, false, store).entry);
            entries.last().date = now.addDays(-days);
            store.update(entries.last());
        }
    }
    Model model(script.services(machine));
    ASSERT_EQ(model.keepDays(), 7);
    model.landings().hold(Job::scan);
    model.start();
    ASSERT_TRUE(waitFor([&] {
        return model.history().size() == 2 && model.history().last().state == HistoryEntry::State::emptied;
    }));
    EXPECT_FALSE(Files::exists(entries.first().moved.first().trashed));
    EXPECT_EQ(model.history().first().state, HistoryEntry::State::inTrash);
    EXPECT_TRUE(model.editedDuringScan()) << "the scan that ran meanwhile saw the old Trash";
    model.landings().letGo(Job::scan);
    model.landings().releaseAll(Job::scan);
    ASSERT_TRUE(settle(model));
    const int scans = *script.scans;
    EXPECT_EQ(model.data()->quarleTrash, entries.last().bytes);

    QTimer* timer = model.expiryTimer();
    ASSERT_TRUE(timer);
    EXPECT_TRUE(timer->isActive());
    EXPECT_EQ(timer->interval(), 3600 * 1000);
    *machine.clock = now.addDays(5);  // the second entry's days have run out too
    const qint64 seq = model.deriveSeq();
    QMetaObject::invokeMethod(timer, "timeout");
    ASSERT_TRUE(waitFor([&] { return model.history().first().state == HistoryEntry::State::emptied; }));
    ASSERT_TRUE(waitFor([&] { return model.deriveSeq() > seq; }));
    EXPECT_FALSE(Files::exists(entries.last().moved.first().trashed));
    EXPECT_EQ(model.data()->quarleTrash, 0) << "the Trash figure follows without a scan";
    EXPECT_FALSE(model.scanning());
    EXPECT_EQ(*script.scans, scans);
}

TEST_F(ScanLifecycle, GrantingFullDiskAccessRescansAndReturningSyncsHistory) {
    const QString item = Home::at("Library/Caches/thing");
    Files::makeDirs(Home::at("Library/Caches"));
    Files::write(item, 5'000);
    HistoryEntry entry;
    {
        HistoryStore store;
        entry = Remover::trash({item}, "thing", false, store).entry;
    }
    auto access = std::make_shared<std::optional<bool>>(false);
    ModelServices services = script.services(machine);
    services.fullDiskAccess = [access] { return *access; };
    services.scan = [scan = services.scan, access](WalkProgress& p, const Cancelled& c, const EarlyReport& e) {
        ScanData data = scan(p, c, e);
        data.fullDiskAccess = *access;
        return data;
    };
    Model model(services);
    model.start();
    ASSERT_TRUE(settle(model));
    EXPECT_EQ(model.fullDiskAccess(), std::optional<bool>(false));

    model.recheckAccess();  // nothing changed
    ASSERT_TRUE(settle(model));
    EXPECT_EQ(*script.scans, 1);
    EXPECT_FALSE(model.toast());

    Files::removeTree(entry.moved.first().trashed);  // emptied by another program
    model.landings().hold(Job::scan);
    model.rescan(false);
    const QUuid running = model.scanToken();
    *access = true;
    model.recheckAccess();
    EXPECT_EQ(model.toast(), std::optional<QString>("Full Disk Access is on. Scanning again."));
    EXPECT_EQ(model.fullDiskAccess(), std::optional<bool>(true));
    EXPECT_NE(model.scanToken(), running) << "the running scan was restarted";
    ASSERT_TRUE(waitFor([&] {
        return !model.history().isEmpty() && model.history().first().state == HistoryEntry::State::emptied;
    }));
    model.landings().letGo(Job::scan);
    model.landings().releaseAll(Job::scan);
    ASSERT_TRUE(settle(model));
    // Start, the scan that was restarted, its replacement, and one more: the emptied item was
    // noticed while the replacement ran, so its figures were stale.
    EXPECT_EQ(*script.scans, 4);

    *access = std::nullopt;  // unknown again: no toast, no scan
    model.dismissToast();
    model.recheckAccess();
    EXPECT_EQ(model.fullDiskAccess(), std::nullopt);
    EXPECT_FALSE(model.scanning());
    EXPECT_FALSE(model.toast());
}

TEST(ScanPause, TakesOnlyAPositiveNumber) {
    EXPECT_EQ(scanPause("2.5"), 2.5);
    EXPECT_EQ(scanPause(" 1 "), 1.0);
    for (const char* bad : {"", "soon", "-1", "0", "nan", "inf", "1e9"}) EXPECT_EQ(scanPause(bad), std::nullopt) << bad;
}

}  // namespace
