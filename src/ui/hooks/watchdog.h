#pragma once
// A thread that pings the main thread's event loop every few milliseconds and notes each time the
// answer took longer than the limit, with the step that was running when the ping was sent. A
// busy thread elsewhere delays nothing; only work on the main thread does. Time the main thread
// spent runnable but waiting for a processor (a loaded machine) is not counted against it.

#include <QList>
#include <QString>
#include <chrono>
#include <memory>

#include "ui/hooks/self_check_report.h"

class QObject;

namespace SelfCheck {

class Watchdog {
public:
    // `mainThread`: an object living on the thread to watch, which must outlive the watchdog.
    Watchdog(QObject* mainThread, std::chrono::milliseconds limit);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    void setStep(const QString& step);
    // Stops watching; the stalls noted until then.
    QList<Stall> stop();

private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace SelfCheck
