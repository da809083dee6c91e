#include "model/wait.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

namespace ModelWait {

bool until(const std::function<bool()>& done, std::chrono::milliseconds limit) {
    const QDeadlineTimer deadline(limit);
    QTimer alarm;  // wakes the wait when nothing else happens before the limit
    alarm.setSingleShot(true);
    alarm.start(limit);
    while (!done()) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents);
    }
    return true;
}

}  // namespace ModelWait
