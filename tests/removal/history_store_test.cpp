#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <QRandomGenerator>
#include <thread>

#include "core/paths.h"
#include "core/record_json.h"
#include "removal/history_store.h"
#include "support/files.h"
#include "removal_fixture.h"
#include "support/sandbox.h"

namespace {

HistoryEntry entry(const QString& title, int items = 1) {
    HistoryEntry e{QUuid::createUuid(), QDateTime::fromSecsSinceEpoch(1'740'000'000, Qt::UTC), title, 0, {},
                   HistoryEntry::State::inTrash};
    for (int i = 0; i < items; ++i)
        e.moved.append({"/h/" + title + QString::number(i), "/t/" + title, 4096, 2049, quint64(i), 1.5});
    e.bytes = 4096 * items;
    return e;
}

int mode(const QString& path) {
    struct stat st;
    return ::stat(Files::bytes(path).constData(), &st) == 0 ? int(st.st_mode & 07777) : -1;
}

using Fixture::namesIn;

TEST(HistoryStore, StartsEmptyCreatesItsPrivateFoldersAtHomeAndKeepsNewestFirst) {
    Sandbox::clearHome();  // no ~/.local/share at all
    const QString cwd = Sandbox::scratch("cwd");
    ASSERT_EQ(::chdir(Files::bytes(cwd).constData()), 0);
    HistoryStore store;
    EXPECT_EQ(store.url(), Sandbox::home() + "/.local/share/Quarle/history.json");
    EXPECT_TRUE(store.entries().isEmpty());
    EXPECT_FALSE(Files::exists(store.url())) << "nothing is written before the first change";

    const HistoryEntry a = entry("a"), b = entry("b");
    store.add(a);
    store.add(b);
    for (const QString& folder : {".local", ".local/share", ".local/share/Quarle"})
        EXPECT_EQ(mode(Sandbox::home() + "/" + folder), 0700) << folder.toStdString();
    EXPECT_EQ(mode(store.url()), 0600);
    EXPECT_TRUE(namesIn(cwd).isEmpty()) << "never relative to the current folder";
    EXPECT_EQ(namesIn(Paths::parentOf(store.url())), (QStringList{"history.json", "history.json.lock"}))
        << "no temporary file left";
    EXPECT_EQ(mode(store.url() + ".lock"), 0600);

    HistoryEntry changed = a;
    changed.state = HistoryEntry::State::emptied;
    store.update(changed);
    const HistoryEntry c = entry("c");
    store.update(c);  // unknown: goes first
    EXPECT_EQ(HistoryStore().entries(), (QList<HistoryEntry>{c, b, changed}));
    EXPECT_EQ(store.current(b.id), b);
    EXPECT_EQ(store.saves(), 4);
    ASSERT_EQ(::chdir("/"), 0);
}

TEST(HistoryStore, DamagedFilesAreKeptAsideByteForByteAndHistoryStartsAfresh) {
    QByteArray random(4096, '\0');
    for (char& c : random) c = char(QRandomGenerator::global()->bounded(256));
    HistoryEntry negative = entry("n");
    negative.moved[0].bytes = -5;
    const QList<QByteArray> damaged{
        random,
        "{\"id\": \"not a list\"}",
        "[{\"id\": 1}]",
        "",
        QByteArray(30'000'000, '['),  // huge, and nested deeper than any reader allows
        encodeJsonList(QList<HistoryEntry>{negative}).toText(),
    };
    for (const QByteArray& text : damaged) {
        const QString folder = Sandbox::scratch("damaged");
        const QString file = folder + "/history.json";
        Files::writeText(file, text);
        const qint64 before = QDateTime::currentSecsSinceEpoch();
        HistoryStore store(file);
        EXPECT_TRUE(store.entries().isEmpty());
        const qint64 after = QDateTime::currentSecsSinceEpoch();
        const QStringList names = namesIn(folder);
        ASSERT_EQ(names.size(), 1) << text.left(40).toStdString();
        const qint64 stamp = names[0].mid(19).chopped(5).toLongLong();
        EXPECT_TRUE(names[0].startsWith("history.unreadable-") && names[0].endsWith(".json"));
        EXPECT_TRUE(stamp >= before && stamp <= after) << names[0].toStdString();
        EXPECT_EQ(Fixture::contents(folder + "/" + names[0]), text);
        store.add(entry("fresh"));
        EXPECT_EQ(HistoryStore(file).entries().size(), 1);
    }

    // A second damaged file in the same second does not replace the first one kept.
    const QString folder = Sandbox::scratch("twice");
    for (int i = 0; i < 2; ++i) {
        Files::writeText(folder + "/history.json", "oops" + QByteArray::number(i));
        HistoryStore store(folder + "/history.json");
    }
    EXPECT_EQ(namesIn(folder).size(), 2);

    // A folder where the file should be is set aside the same way.
    const QString dir = Sandbox::scratch("dir");
    Files::makeDirs(dir + "/history.json/inside");
    EXPECT_TRUE(HistoryStore(dir + "/history.json").entries().isEmpty());
    ASSERT_EQ(namesIn(dir).size(), 1);
    EXPECT_TRUE(Files::exists(dir + "/" + namesIn(dir)[0] + "/inside"));
}

TEST(HistoryStore, LargeHistoriesRawByteNamesAndConcurrentChangesSurvive) {
    const QString file = Sandbox::scratch("big") + "/history.json";
    QList<HistoryEntry> all;
    {
        HistoryStore store(file);
        HistoryEntry odd = entry("odd");
        odd.moved[0].original = Paths::fromBytes(QByteArray("/h/caf\xe9\n\"x\"", 11));
        store.add(odd);
        all.prepend(odd);
        HistoryEntry big = entry("big", 20'000);
        store.add(big);
        all.prepend(big);
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&store] {
                for (int i = 0; i < 10; ++i) store.add(entry("t"));
            });
        for (std::thread& t : threads) t.join();
        EXPECT_EQ(store.saves(), 42);
    }
    const QList<HistoryEntry> read = HistoryStore(file).entries();
    ASSERT_EQ(read.size(), 42);
    EXPECT_EQ(read.mid(40), all);
    EXPECT_EQ(Paths::toBytes(read.last().moved[0].original), QByteArray("/h/caf\xe9\n\"x\"", 11));
}

TEST(HistoryStore, TheFileIsExactlyWhatTheSharedWriterPrintsAfterAnyChange) {
    const QString file = Sandbox::scratch("text") + "/history.json";
    HistoryStore store(file);
    QRandomGenerator random(7);
    QList<HistoryEntry> made;
    for (int step = 0; step < 300; ++step) {
        const int what = random.bounded(5);
        if (made.isEmpty() || what == 0) {
            HistoryEntry e = entry(step % 3 ? "plain" : "odd \"moved\" : []\n\\ [] {}", random.bounded(3));
            made.append(e);
            store.add(e);
        } else {
            HistoryEntry& e = made[random.bounded(made.size())];
            if (what == 1) e.moved.append(entry("grown", 1).moved);  // a checkpoint of a growing removal
            if (what == 2 && !e.moved.isEmpty()) e.moved.removeAt(random.bounded(e.moved.size()));
            if (what == 3) e.state = HistoryEntry::State::emptied;
            if (what == 4) e.moved.clear();
            e.bytes = 4096 * e.moved.size();
            store.update(e);
        }
        ASSERT_EQ(Fixture::contents(file), encodeJsonList(store.entries()).toText()) << "step " << step;
    }
}

// The window and the command line each keep a store of the same file: neither may lose what the
// other wrote, even when both write at once.
TEST(HistoryStore, StoresOfOneFileInTwoPlacesTakeInEachOthersChanges) {
    const QString file = Sandbox::scratch("shared") + "/history.json";
    HistoryStore window(file), line(file);
    HistoryEntry a = entry("a"), b = entry("b");
    window.add(a);
    line.add(b);  // written by a store that never saw `a`
    EXPECT_EQ(HistoryStore(file).entries(), (QList<HistoryEntry>{b, a}));
    EXPECT_EQ(window.entries(), (QList<HistoryEntry>{b, a})) << "a reader sees the other store's entry";

    a.state = HistoryEntry::State::emptied;
    window.update(a);
    EXPECT_EQ(line.current(a.id), a);
    EXPECT_EQ(HistoryStore(file).entries(), (QList<HistoryEntry>{b, a}));

    // A file some other program damaged is kept aside; the store goes on with what it knew.
    Files::writeText(file, "{ not a history");
    EXPECT_EQ(window.entries(), (QList<HistoryEntry>{b, a}));
    EXPECT_EQ(namesIn(Paths::parentOf(file)).filter("unreadable").size(), 1);
    const HistoryEntry c = entry("c");
    line.add(c);
    EXPECT_EQ(HistoryStore(file).entries(), (QList<HistoryEntry>{c, b, a}));

    // Many changes at once from stores that each start with a different picture of the file.
    std::vector<std::thread> writers;
    for (int t = 0; t < 4; ++t)
        writers.emplace_back([&file] {
            HistoryStore own(file);
            for (int i = 0; i < 25; ++i) {
                HistoryEntry e = entry("w");
                own.add(e);
                e.state = HistoryEntry::State::restored;
                own.update(e);
            }
        });
    for (std::thread& t : writers) t.join();
    const QList<HistoryEntry> after = HistoryStore(file).entries();
    ASSERT_EQ(after.size(), 103);
    EXPECT_EQ(std::count_if(after.begin(), after.end(),
                            [](const HistoryEntry& e) { return e.state == HistoryEntry::State::restored; }),
              100);
}

}  // namespace
