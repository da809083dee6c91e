#include "measure/yielding.h"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace Yielding {

void lowerThisThread() {
    thread_local bool lowered = false;
    if (lowered) return;
    lowered = true;
    const auto tid = pid_t(::syscall(SYS_gettid));
    if (tid == ::getpid()) return;
    // On Linux a thread's nice value is its own; raising it needs no privilege. A failure only
    // means the thread keeps its place.
    errno = 0;
    const int now = ::getpriority(PRIO_PROCESS, id_t(tid));
    if (errno == 0) ::setpriority(PRIO_PROCESS, id_t(tid), now + 5);
}

}  // namespace Yielding
