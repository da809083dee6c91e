// Quarle's Trash as Debian's trash-cli sees it: listed, restored and emptied by another tool, and
// another tool's items left alone by Quarle.

#include <gtest/gtest.h>

#include <QRegularExpression>

#include "core/home.h"
#include "core/paths.h"
#include "core/record_json.h"
#include "platform/shell.h"
#include "removal/history_store.h"
#include "removal_fixture.h"
#include "support/files.h"
#include "support/run_quarle.h"
#include "support/sandbox.h"

namespace {

using Fixture::contents;

struct TrashCliTest : ::testing::Test {
    QString home = Sandbox::home();
    void SetUp() override {
        if (!Shell::exec({"trash-list", "--version"}, 30).succeeded())
            GTEST_SKIP() << "trash-cli is not installed (tools/packages lists it)";
        Sandbox::clearHome();
    }
    QString file(const QString& name, const QByteArray& text) {
        Files::writeText(home + "/" + name, text);
        return home + "/" + name;
    }
    // Runs `quarle trash` and returns the new entry's ID.
    QByteArray quarleTrash(const QStringList& paths) {
        QList<QByteArray> args{"trash"};
        for (const QString& p : paths) args.append(Paths::toBytes(p));
        const Ran ran = runQuarle(args);
        EXPECT_EQ(ran.status, 0) << ran.err.constData();
        return QRegularExpression("History entry: (\\S+)").match(QString::fromUtf8(ran.out)).captured(1).toLatin1();
    }
    QList<HistoryEntry> history() {
        const Ran ran = runQuarle({"history", "--json"});
        EXPECT_EQ(ran.status, 0);
        EXPECT_EQ(ran.err, "") << "marking gone items is no error";
        return decodeJsonList<HistoryEntry>(parseJson(ran.out).value_or(QJsonValue())).value_or(QList<HistoryEntry>());
    }
    // trash-list's lines for this test's home (it lists the Trash of every mounted file system).
    QStringList trashList() {
        const Shell::Outcome o = Shell::exec({"trash-list"}, 60);
        QStringList lines = QString::fromUtf8(o.out).split('\n', Qt::SkipEmptyParts).filter(" " + home + "/");
        lines.sort();
        return lines;
    }
};

TEST_F(TrashCliTest, ListsQuarlesItemsWithTheirPathAndDateAndRestoresThemByteForByte) {
    const QStringList names{"plain.txt", "with space", "100%", "a#b", "q?x", "c+d", "\u00e9\u732b"};
    QStringList paths;
    for (const QString& name : names) paths.append(file(name, "content of " + name.toUtf8()));
    Files::makeDirs(home + "/folder/inner");
    Files::writeText(home + "/folder/inner/f", "inside");
    paths.append(home + "/folder");
    const QByteArray tree = Fixture::treeHash(home);
    const QByteArray id = quarleTrash(paths);
    const QList<HistoryEntry> entries = history();
    ASSERT_EQ(entries.size(), 1);
    const QString date = entries[0].date.toLocalTime().toString("yyyy-MM-dd HH:mm:ss");
    QStringList expected;
    for (const QString& p : paths) expected.append(date + " " + p);
    expected.sort();
    EXPECT_EQ(trashList(), expected);

    // Half come back through Quarle, half through trash-cli.
    QList<QByteArray> ours{"restore", id};
    for (const QString& p : paths.mid(0, 4)) ours.append(Paths::toBytes(p));
    EXPECT_EQ(runQuarle(ours).out, "Put back 4 items where they were.\n");
    for (const QString& p : paths.mid(4))
        EXPECT_TRUE(Shell::exec({"sh", "-c", "echo 0 | trash-restore \"$1\"", "sh", p}, 60).succeeded());
    const QList<HistoryEntry> after = history();
    EXPECT_EQ(after[0].state, HistoryEntry::State::emptied) << "gone from the Trash, by whatever means";
    Files::removeTree(home + "/.local");
    EXPECT_EQ(Fixture::treeHash(home), tree) << "every name and byte came back";
}

TEST_F(TrashCliTest, SamePathThreeTimesAndANameThatIsNotUtf8) {
    const QString again = home + "/again";
    for (int i = 0; i < 3; ++i) quarleTrash({file("again", QByteArray::number(i))});
    EXPECT_EQ(trashList().filter(QRegularExpression(" " + QRegularExpression::escape(again) + "$")).size(), 3);

    const QString odd = file(Paths::fromBytes(QByteArray("bad\xff\xfe name", 10)), "raw");
    const QByteArray id = quarleTrash({odd});
    EXPECT_FALSE(Files::exists(odd));
    EXPECT_EQ(trashList().size(), 4) << "trash-cli lists it too";
    EXPECT_EQ(runQuarle({"restore", id}).status, 0);
    EXPECT_EQ(contents(odd), "raw");
    EXPECT_TRUE(Fixture::namesIn(home).contains(Paths::lastComponent(odd)));
}

TEST_F(TrashCliTest, AnotherToolsItemsAreLeftAloneByExpiryAndEmptying) {
    const QString trash = Home::trashFolder();
    Files::makeDirs(home + "/theirs/dir");
    Files::writeText(home + "/theirs/dir/f", "x");
    ASSERT_TRUE(Shell::exec({"trash-put", file("mine-too", "theirs"), home + "/theirs/dir"}, 60).succeeded());
    const QByteArray before = Fixture::treeHash(trash);

    const QByteArray id = quarleTrash({file("mine-too", "ours"), file("other", "ours")});
    EXPECT_EQ(runQuarle({"empty", id, "--yes"}).status, 0);
    EXPECT_EQ(Fixture::treeHash(trash), before);

    quarleTrash({file("mine-too", "ours again")});
    {  // make it three days old
        HistoryStore store;
        HistoryEntry e = store.entries().first();
        e.date = e.date.addDays(-3);
        store.update(e);
    }
    const Ran expired = runQuarle({"expire", "--days", "2"});
    EXPECT_EQ(expired.status, 0);
    EXPECT_TRUE(expired.out.startsWith("Emptied 1 entry")) << expired.out.constData();
    EXPECT_EQ(Fixture::treeHash(trash), before);
    EXPECT_EQ(trashList().size(), 2);

    // Emptied by trash-cli: Quarle notices without complaint.
    quarleTrash({file("last", "ours")});
    ASSERT_TRUE(Shell::exec({"trash-empty"}, 60).succeeded());
    EXPECT_EQ(history().first().state, HistoryEntry::State::emptied);
}

}  // namespace
