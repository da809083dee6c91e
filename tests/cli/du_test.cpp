#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <QDir>

#include "support/run_quarle.h"
#include "core/paths.h"
#include "core/record_json.h"
#include "measure/walker.h"
#include "support/as_user.h"
#include "support/files.h"
#include "support/sandbox.h"

namespace {

QString makeFolder() {
    const QString root = Sandbox::scratch("du");
    Files::makeDirs(root + "/big/inner");
    Files::makeDirs(root + "/small");
    Files::write(root + "/big/inner/data", 3'000'000);
    Files::write(root + "/big/more", 1'200'000);
    Files::write(root + "/small/a", 5000);
    Files::hardlink(root + "/big/more", root + "/small/link-to-more");
    return root;
}

QByteArray b(const QString& s) { return Paths::toBytes(s); }

TEST(Du, PrintsTheSizeTheExactBytesAndTheFiles) {
    const QString root = makeFolder();
    const WalkResult expected = Walker::size(root, true);
    const Ran ran = runQuarle({"du", b(root)});
    EXPECT_EQ(ran.status, 0) << ran.err.constData();
    // 3,000,000 and 1,200,000 in 4 KiB blocks, 5,000 in 8 KiB, and four folders of 4 KiB each: what du says.
    ASSERT_EQ(expected.bytes, 4'227'072);
    EXPECT_EQ(expected.bytes, Files::diskUsage(root));
    EXPECT_EQ(QString::fromUtf8(ran.out), root + ": 4 MB (4,227,072 bytes), 4 files\n");
    EXPECT_TRUE(ran.err.isEmpty());

    const Ran file = runQuarle({"du", b(root + "/small/a")});
    EXPECT_EQ(file.status, 0);
    EXPECT_TRUE(file.out.endsWith(": 8 KB (8,192 bytes), 1 file\n")) << file.out.constData();
}

TEST(Du, TreeListsLargestFirstAndJsonIsTheSizeTree) {
    const QString root = makeFolder();
    const Ran tree = runQuarle({"du", "--tree", "2", b(root)});
    EXPECT_EQ(tree.status, 0);
    const QList<QByteArray> lines = tree.out.split('\n');
    ASSERT_GE(lines.size(), 5) << tree.out.constData();
    EXPECT_TRUE(lines[1].endsWith("  big/")) << lines[1].constData();
    EXPECT_TRUE(lines[2].startsWith("      ") && lines[2].endsWith("  inner/")) << lines[2].constData();
    EXPECT_TRUE(lines[3].endsWith("  more")) << lines[3].constData();
    EXPECT_TRUE(lines[4].endsWith("  small/")) << lines[4].constData();

    const Ran json = runQuarle({"du", "--json", "--tree", "1", b(root), b(root + "/small")});
    EXPECT_EQ(json.status, 0);
    const auto nodes = decodeJsonList<SpaceNode>(parseJson(json.out).value_or(QJsonValue()));
    ASSERT_TRUE(nodes) << json.out.constData();
    ASSERT_EQ(nodes->size(), 2);
    EXPECT_EQ(nodes->at(0).bytes, Walker::size(root, true).bytes);
    EXPECT_EQ(nodes->at(0).kids.size(), 2);
    EXPECT_EQ(nodes->at(1).path, root + "/small");
}

TEST(Du, BadArgumentsGetAPlainLineAndAFailingStatus) {
    const QString root = makeFolder();
    Files::symlink(root + "/big", root + "/link");

    const Ran mixed = runQuarle({"du", b(root + "/nope"), b(root + "/small")});
    EXPECT_EQ(mixed.status, 1);
    EXPECT_TRUE(mixed.err.contains("/nope: no such file or folder.")) << mixed.err.constData();
    EXPECT_TRUE(mixed.out.contains("/small: ")) << "the other paths are still measured";

    const Ran link = runQuarle({"du", b(root + "/link")});
    EXPECT_EQ(link.status, 1);
    EXPECT_TRUE(link.err.contains("is a symbolic link; Quarle doesn't follow links")) << link.err.constData();
    EXPECT_TRUE(link.out.isEmpty());

    EXPECT_EQ(runQuarle({"du"}).status, 2);
    EXPECT_EQ(runQuarle({"du", "--tree", "x", b(root)}).status, 2);
    EXPECT_EQ(runQuarle({"du", "--fast", b(root)}).status, 2);
    EXPECT_EQ(runQuarle({"frobnicate"}).status, 2);
    const Ran help = runQuarle({"help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.contains("quarle du [--tree DEPTH] [--json] PATH"));
}

TEST(Du, OddNamesArePrintedAsTheirBytes) {
    const QString root = Sandbox::scratch("du-names");
    const QByteArray name("new\nline \xff.bin");
    Files::write(root + "/" + Paths::fromBytes(name), 1'500'000);
    Files::write(root + "/small", 4096);
    const Ran ran = runQuarle({"du", "--tree", "1", b(root)});
    EXPECT_EQ(ran.status, 0);
    EXPECT_TRUE(ran.out.endsWith("  2 MB  new\\nline \xff.bin\n")) << "a newline in a name forges no line";
    const Ran json = runQuarle({"du", "--json", "--tree", "1", b(root)});
    const auto nodes = decodeJsonList<SpaceNode>(parseJson(json.out).value_or(QJsonValue()));
    ASSERT_TRUE(nodes);
    ASSERT_EQ(nodes->first().kids.size(), 1);  // the 4 KB file is below the tree's smallest file
    EXPECT_EQ(Paths::toBytes(nodes->first().kids[0].name), name);
}

TEST(CommandLine, NothingIsGuessedAndNothingReachesTheTerminalRaw) {
    Sandbox::clearHome();
    const QString home = Sandbox::home();
    for (const QList<QByteArray>& args : QList<QList<QByteArray>>{{"trash", ""}, {"du", ""}, {"restore", "X", ""}}) {
        const Ran ran = runQuarle(args);
        EXPECT_EQ(ran.status, 2) << args.first().constData();
        EXPECT_TRUE(ran.err.contains("an empty argument names nothing")) << ran.err.constData();
    }
    for (const QList<QByteArray>& args : QList<QList<QByteArray>>{
             {"trash", "--title"}, {"history", "--jsn"}, {"expire", "--days"}, {"empty", "--all", "X"}, {"restore", "--yes", "X"}})
        EXPECT_EQ(runQuarle(args).status, 2) << args.join(' ').constData();

    // The current folder travels as bytes, whatever its name.
    const QString odd = Sandbox::scratch("cwd") + "/" + Paths::fromBytes("\xff\xfe");
    ASSERT_EQ(::mkdir(b(odd).constData(), 0700), 0);
    Files::write(odd + "/f", 4096);
    const QByteArray before = QDir::currentPath().toLocal8Bit();
    ASSERT_EQ(::chdir(b(odd).constData()), 0);
    const Ran here = runQuarle({"du", "."});
    ASSERT_EQ(::chdir(before.constData()), 0);
    EXPECT_EQ(here.status, 0) << here.err.constData();

    Files::write(home + "/f", 10);
    EXPECT_EQ(runQuarle({"trash", "--title", "\x1b[2J\n2099-01-01 00:00  fake", b(home + "/f")}).status, 0);
    const Ran history = runQuarle({"history"});
    EXPECT_FALSE(history.out.contains('\x1b')) << history.out.constData();
    EXPECT_TRUE(history.out.contains("\\x1B[2J\\n2099-01-01 00:00  fake")) << history.out.constData();

    EXPECT_EQ(runQuarle({"keep-days", "-1"}).status, 2);
    const Ran far = runQuarle({"keep-days", "99999999999", "--yes"});
    EXPECT_EQ(far.status, 0);
    EXPECT_TRUE(far.err.contains("at most 36500 days")) << far.err.constData();
    EXPECT_TRUE(runQuarle({"keep-days"}).out.contains("36,500 days")) << "cut to the longest, never wrapped";
}

TEST(Du, UnreadableFoldersAreNotedNotFatal) {
    if (!AsUser::canDrop()) GTEST_SKIP() << "needs root to switch to an unprivileged user";
    const QString root = makeFolder();
    Files::makeDirs(root + "/small/locked");
    Files::write(root + "/small/locked/secret", 100000);
    ::chmod(Files::bytes(root + "/small/locked").constData(), 0700);
    ::chmod(Files::bytes(root + "/big").constData(), 0700);
    const auto out = AsUser::run([&] {
        const Ran flat = runQuarle({"du", b(root + "/small")});
        const Ran tree = runQuarle({"du", "--tree", "1", b(root)});
        const Ran locked = runQuarle({"du", b(root + "/big")});
        return QByteArray::number(flat.status) + "|" + flat.out + "|" + QByteArray::number(tree.status) + "|" +
               tree.out + "|" + QByteArray::number(locked.status) + "|" + locked.err;
    });
    ASSERT_TRUE(out);
    const QList<QByteArray> parts = out->split('|');
    ASSERT_EQ(parts.size(), 6);
    EXPECT_EQ(parts[0], "0");
    EXPECT_TRUE(parts[1].endsWith(", 2 files, 1 folder could not be read\n")) << parts[1].constData();
    EXPECT_EQ(parts[2], "0");
    EXPECT_TRUE(parts[3].contains("(some folders could not be read)")) << parts[3].constData();
    EXPECT_TRUE(parts[3].contains("  big/  (partly locked)")) << parts[3].constData();
    EXPECT_TRUE(parts[3].contains("  small/  (partly locked)")) << parts[3].constData();
    EXPECT_EQ(parts[4], "1");
    EXPECT_TRUE(parts[5].contains("the folder can't be read")) << parts[5].constData();
}

}  // namespace
