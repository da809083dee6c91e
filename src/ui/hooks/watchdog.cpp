#include "ui/hooks/watchdog.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <QMetaObject>
#include <QObject>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

namespace SelfCheck {
namespace {

// How long a thread has waited, runnable, for a processor (the second figure of its schedstat);
// 0 where the kernel does not say.
std::chrono::milliseconds waitedForProcessor(long tid) {
    char path[64];
    std::snprintf(path, sizeof path, "/proc/self/task/%ld/schedstat", tid);
    unsigned long long ran = 0, waited = 0;
    if (FILE* f = std::fopen(path, "re")) {
        if (std::fscanf(f, "%llu %llu", &ran, &waited) != 2) waited = 0;
        std::fclose(f);
    }
    return std::chrono::milliseconds(waited / 1'000'000);
}

}  // namespace

// Shared with the pings in flight, which may be answered after the watchdog is gone.
struct Watchdog::State {
    std::mutex lock;
    std::condition_variable changed;
    QString step = QStringLiteral("starting");
    quint64 sent = 0;      // pings sent and answered, counted; equal when none is in flight
    quint64 answered = 0;
    bool stopping = false;
    QList<Stall> stalls;
    std::thread thread;
};

Watchdog::Watchdog(QObject* mainThread, std::chrono::milliseconds limit) : state_(std::make_shared<State>()) {
    using Clock = std::chrono::steady_clock;
    const long watched = ::syscall(SYS_gettid);  // the watchdog is made on the thread it watches
    state_->thread = std::thread([s = state_.get(), weak = std::weak_ptr<State>(state_), mainThread, limit, watched] {
        std::unique_lock held(s->lock);
        while (!s->stopping) {
            const quint64 ping = ++s->sent;
            const Clock::time_point at = Clock::now();
            const auto waitedBefore = waitedForProcessor(watched);
            held.unlock();
            QMetaObject::invokeMethod(mainThread, [weak, ping] {
                if (const auto state = weak.lock()) {
                    std::lock_guard answering(state->lock);
                    state->answered = ping;
                    state->changed.notify_all();
                }
            }, Qt::QueuedConnection);
            held.lock();
            // The step is read once the answer is late: the main thread is stuck in it right then.
            const auto done = [&] { return s->answered >= ping || s->stopping; };
            QString step;
            const bool late = !s->changed.wait_for(held, limit, done);
            if (late) {
                step = s->step;
                s->changed.wait(held, done);
            }
            // A ping still unanswered when the watch stops counts as far as it got. Time the main
            // thread spent waiting for a processor is the machine's load, not Quarle's work.
            const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - at);
            if (late && took > limit) {
                const auto queued = std::min(took, waitedForProcessor(watched) - waitedBefore);
                if (took - queued > limit) s->stalls.append({step, took.count(), queued.count()});
            }
            if (s->answered < ping) break;
            s->changed.wait_for(held, std::chrono::milliseconds(5), [&] { return s->stopping; });
        }
    });
}

Watchdog::~Watchdog() { stop(); }

void Watchdog::setStep(const QString& step) {
    std::lock_guard held(state_->lock);
    state_->step = step;
}

QList<Stall> Watchdog::stop() {
    {
        std::lock_guard held(state_->lock);
        state_->stopping = true;
        state_->changed.notify_all();
    }
    if (state_->thread.joinable()) state_->thread.join();
    std::lock_guard held(state_->lock);
    return state_->stalls;
}

}  // namespace SelfCheck
