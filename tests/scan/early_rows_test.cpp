#include <gtest/gtest.h>

#include <QMutex>
#include <atomic>
#include <thread>

#include "core/home.h"
#include "scan/early_rows.h"
#include "support/lists.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Recorder {
    QMutex lock;
    QList<std::pair<qint64, QList<EarlyRow>>> reports;
    EarlyReport callback() {
        return [this](qint64 seq, const QList<EarlyRow>& rows) {
            QMutexLocker guard(&lock);
            reports.append({seq, rows});
        };
    }
};

// A clock the test moves by hand.
struct FakeClock {
    Clock::time_point now{};
    EarlyRows::Clock clock() {
        return [this] { return now; };
    }
    void advance(int ms) { now += std::chrono::milliseconds(ms); }
};

const EarlyRow* rowOf(const QList<EarlyRow>& rows, const QString& id) { return findBy(rows, &EarlyRow::id, id); }

}  // namespace

TEST(EarlyRows, MatchesRootsAtOrInsideRuleFoldersAndSkipsWhatCachesLeavesOut) {
    Recorder rec;
    FakeClock t;
    EarlyRows rows(rec.callback(), t.clock());
    rows.start({Home::at("Library/Caches/com.spotify.client/Data"),  // 0: caches
                Home::at("Library/Caches/Homebrew/downloads"),       // 1: homebrew only
                Home::at("Library/Caches/com.apple.Safari/x"),       // 2: nobody
                Home::at("Library/Developer/Xcode/DerivedData"),     // 3: derived, the folder itself
                Home::at("Library/Application Support/MobileSync/Backup"),  // 4: backups (kept: not shown)
                Home::at("Library/CachesOld/x"),                     // 5: only shares a prefix
                Home::at(".npm/_npx/1")});                           // 6: npm's second folder

    rows.done(1, 500);
    ASSERT_EQ(rec.reports.size(), 1);  // homebrew's only root finished: at once
    EXPECT_EQ(rec.reports[0].second, QList<EarlyRow>({{"homebrew", "Homebrew downloads", Bucket::now, 500, true}}));
    rows.done(0, 300);  // completes caches
    rows.done(2, 7000);  // belongs to no rule, inside the rate window: nothing
    rows.done(4, 9000);  // a kept rule: never shown
    rows.done(5, 100);
    ASSERT_EQ(rec.reports.size(), 2);
    EXPECT_EQ(*rowOf(rec.reports[1].second, "caches"), (EarlyRow{"caches", "App caches", Bucket::now, 300, true}));
    t.advance(300);
    rows.done(3, 0);  // derived completes with 0 bytes: reported at once, but without a row of 0 bytes
    ASSERT_EQ(rec.reports.size(), 3);
    const QList<EarlyRow> last = rec.reports[2].second;
    EXPECT_FALSE(rowOf(last, "derived"));
    EXPECT_FALSE(rowOf(last, "backups"));
    EXPECT_EQ(QList<qint64>({rec.reports[0].first, rec.reports[1].first, rec.reports[2].first}), QList<qint64>({1, 2, 3}));
    EXPECT_EQ(fieldOf(last, &EarlyRow::id), QStringList({"caches", "homebrew"}));  // rule order, not size order
}

TEST(EarlyRows, AtMostFourReportsASecondExceptWhenARuleCompletes) {
    Recorder rec;
    FakeClock t;
    EarlyRows rows(rec.callback(), t.clock());
    // Six roots of "caches" and one of "logs".
    QStringList roots;
    for (int i = 0; i < 6; ++i) roots.append(Home::at(QString("Library/Caches/app%1/d").arg(i)));
    roots.append(Home::at("Library/Logs/DiagnosticReports"));
    rows.start(roots);

    rows.done(0, 10);  // the first report is never held back
    EXPECT_EQ(rec.reports.size(), 1);
    t.advance(100);
    rows.done(1, 10);
    t.advance(100);
    rows.done(2, 10);
    EXPECT_EQ(rec.reports.size(), 1);  // 200 ms since the last report
    t.advance(50);
    rows.done(3, 10);  // exactly 250 ms: still held
    EXPECT_EQ(rec.reports.size(), 1);
    t.advance(1);
    rows.done(4, 10);  // more than a quarter second
    ASSERT_EQ(rec.reports.size(), 2);
    EXPECT_EQ(*rowOf(rec.reports[1].second, "caches"), (EarlyRow{"caches", "App caches", Bucket::now, 50, false}));
    t.advance(10);
    rows.done(6, 40);  // logs completes: at once, though only 10 ms passed
    ASSERT_EQ(rec.reports.size(), 3);
    EXPECT_TRUE(rowOf(rec.reports[2].second, "logs")->done);
    t.advance(10);
    rows.done(5, 10);  // caches completes
    ASSERT_EQ(rec.reports.size(), 4);
    EXPECT_EQ(*rowOf(rec.reports[3].second, "caches"), (EarlyRow{"caches", "App caches", Bucket::now, 60, true}));
}

TEST(EarlyRows, ManyThreadsGetOneRisingSequenceAndTheFinalSums) {
    Recorder rec;
    EarlyRows rows(rec.callback());
    QStringList roots;
    constexpr int perRule = 200;
    for (int i = 0; i < perRule; ++i) {
        roots.append(Home::at(QString("Library/Caches/app%1").arg(i)));
        roots.append(Home::at(QString(".gradle/caches/m%1").arg(i)));
    }
    rows.start(roots);
    std::atomic<int> next{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&] {
            for (int i; (i = next.fetch_add(1)) < roots.size();) rows.done(i, 1000);
        });
    for (std::thread& t : threads) t.join();
    QList<qint64> seqs;
    for (const auto& r : rec.reports) seqs.append(r.first);
    std::sort(seqs.begin(), seqs.end());
    for (int i = 0; i < seqs.size(); ++i) EXPECT_EQ(seqs[i], i + 1);  // each number once, none missing
    // The report with the highest number holds the finished totals.
    const auto newest = std::max_element(rec.reports.begin(), rec.reports.end(),
                                         [](const auto& a, const auto& b) { return a.first < b.first; });
    EXPECT_EQ(*rowOf(newest->second, "caches"), (EarlyRow{"caches", "App caches", Bucket::now, perRule * 1000, true}));
    EXPECT_EQ(*rowOf(newest->second, "gradle"), (EarlyRow{"gradle", "Gradle caches", Bucket::now, perRule * 1000, true}));
}

