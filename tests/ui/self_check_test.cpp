// The self-check's watchdog and report: a stall of the main thread is noted with its step, a busy
// thread elsewhere is not, and the exit status follows failures and stalls.

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <atomic>
#include <thread>

#include "ui/hooks/self_check_report.h"
#include "ui/hooks/watchdog.h"

using namespace std::chrono_literals;

namespace {

void turn(int ms) {
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < ms) QApplication::processEvents(QEventLoop::AllEvents, 5);
}

TEST(SelfCheck, WatchdogNotesAMainThreadStallNotABusyThread) {
    SelfCheck::Watchdog dog(qApp, 100ms);
    dog.setStep("busy elsewhere");
    std::atomic<bool> stop{false};
    std::thread busy([&] {
        volatile unsigned long spins = 0;
        while (!stop) spins = spins + 1;
    });
    turn(400);
    stop = true;
    busy.join();
    dog.setStep("provoked");
    std::this_thread::sleep_for(400ms);  // the main thread answers nothing meanwhile
    turn(50);
    const QList<SelfCheck::Stall> stalls = dog.stop();
    int provoked = 0;
    for (const SelfCheck::Stall& s : stalls) {
        EXPECT_NE(s.step, "busy elsewhere") << s.ms << " ms";
        if (s.step == "provoked") {
            ++provoked;
            EXPECT_GE(s.ms, 350);
        }
    }
    EXPECT_EQ(provoked, 1);
}

TEST(SelfCheck, ExitStatusFollowsFailuresAndStalls) {
    SelfCheck::Report r;
    r.steps = {{"Ctrl+1 opens home", 31, {}, {}}, {"the tray's actions", 0, {}, "no tray here"}};
    EXPECT_EQ(SelfCheck::exitStatus(r), 0);
    EXPECT_TRUE(SelfCheck::text(r).contains("skip  the tray's actions (no tray here)"));
    EXPECT_TRUE(QJsonDocument::fromJson(SelfCheck::json(r)).object().value("ok").toBool());

    r.stalls = {{"Ctrl+R scans again", 180, 20}};
    EXPECT_EQ(SelfCheck::exitStatus(r), 1);
    EXPECT_TRUE(SelfCheck::text(r).contains("180 ms  during \"Ctrl+R scans again\""));

    r.stalls.clear();
    r.steps.append({"Ctrl+2 opens clean", 2000, "the clean page shown", {}});
    EXPECT_EQ(SelfCheck::exitStatus(r), 1);
    EXPECT_TRUE(SelfCheck::text(r).contains("Ctrl+2 opens clean: expected the clean page shown"));
    const QJsonObject o = QJsonDocument::fromJson(SelfCheck::json(r)).object();
    EXPECT_FALSE(o.value("ok").toBool());
    EXPECT_EQ(o.value("failures").toInt(), 1);
}

}  // namespace
