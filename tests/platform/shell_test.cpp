#include <gtest/gtest.h>

#include <QElapsedTimer>

#include "platform/shell.h"
#include "support/files.h"
#include "support/linux_apps.h"
#include "support/sandbox.h"

namespace {

QStringList sh(const QString& script) { return {"/bin/sh", "-c", script}; }

TEST(Shell, OutputOnlyOnSuccessAndProgramsFoundOnThePath) {
    EXPECT_EQ(Shell::run(sh("printf 'snap\\nshot'"), 5).value(), "snap\nshot");
    EXPECT_EQ(Shell::run(sh("echo partial; exit 3"), 5), std::nullopt);
    EXPECT_EQ(Shell::run({"/no/such/program"}, 5), std::nullopt);
    EXPECT_EQ(Shell::run({}, 5), std::nullopt);
    EXPECT_EQ(Shell::run(sh("printf '\\377\\376'"), 5), std::nullopt);  // not UTF-8
    EXPECT_EQ(Shell::run(sh("kill -9 $$"), 5), std::nullopt);
    const Shell::Outcome o = Shell::exec(sh("echo out; echo err >&2; exit 4"), 5);
    EXPECT_TRUE(o.launched);
    EXPECT_EQ(o.status, 4);
    EXPECT_EQ(o.out, "out\n");
    EXPECT_EQ(o.err, "err\n");
    EXPECT_FALSE(Shell::exec({"/no/such/program"}, 5).launched);
    EXPECT_EQ(Shell::run(sh("read x; echo \"got [$x]\""), 5).value(), "got []\n");  // stdin is empty

    const QString bin = Sandbox::scratch("bin");
    LinuxFixtures::script(bin, "fake-tool", "echo \"fake $*\"\n");
    const LinuxFixtures::ScopedEnv path("PATH", Files::bytes(bin) + ":" + qgetenv("PATH"));
    EXPECT_EQ(Shell::run({"fake-tool", "a b"}, 5).value(), "fake a b\n");
}

TEST(Shell, AChildThatNeverEndsIsCutAtItsDeadline) {
    QElapsedTimer timer;
    timer.start();
    const Shell::Outcome o = Shell::exec(sh("echo started; sleep 1000"), 0.5);
    EXPECT_TRUE(o.timedOut);
    EXPECT_EQ(o.out, "started\n");
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_EQ(Shell::run(sh("trap '' TERM; sleep 1000"), 0.3), std::nullopt);  // one that ignores TERM too

    // A child that leaves something behind holding the pipes does not hold Quarle up either.
    timer.restart();
    EXPECT_EQ(Shell::run(sh("(sleep 1000 &) ; echo done"), 5).value(), "done\n");
    EXPECT_LT(timer.elapsed(), 4000);
}

TEST(Shell, AChattyChildIsDrainedOnBothPipes) {
    // Eight megabytes on each pipe: far beyond a pipe's buffer, so an undrained pipe would block it.
    const Shell::Outcome o =
        Shell::exec(sh("head -c 8000000 /dev/zero | tr '\\0' a; head -c 8000000 /dev/zero | tr '\\0' b >&2"), 60);
    EXPECT_TRUE(o.succeeded());
    EXPECT_EQ(o.out.count('a'), 8'000'000);
    EXPECT_EQ(o.err.size(), 8'000'000);
}

}  // namespace
