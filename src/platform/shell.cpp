#include "platform/shell.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <vector>

#include "core/paths.h"

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

// Terminates the child's whole process group: politely first, then for good.
void terminateGroup(pid_t pid, int& status) {
    ::kill(-pid, SIGTERM);
    for (int i = 0; i < 50; ++i) {  // up to half a second to leave on its own
        if (::waitpid(pid, &status, WNOHANG) == pid) {
            ::kill(-pid, SIGKILL);  // whatever it left behind
            return;
        }
        ::usleep(10000);
    }
    ::kill(-pid, SIGKILL);
    ::waitpid(pid, &status, 0);
}

}  // namespace

namespace Shell {

Outcome exec(const QStringList& arguments, double timeoutSeconds) {
    Outcome outcome;
    if (arguments.isEmpty()) return outcome;
    int out[2], err[2];
    if (::pipe2(out, O_CLOEXEC) != 0) return outcome;
    if (::pipe2(err, O_CLOEXEC) != 0) {
        ::close(out[0]);
        ::close(out[1]);
        return outcome;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err[1], 2);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawnattr_setpgroup(&attributes, 0);
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);

    std::vector<QByteArray> store;
    for (const QString& a : arguments) store.push_back(Paths::toBytes(a));
    std::vector<char*> argv;
    for (QByteArray& a : store) argv.push_back(a.data());
    argv.push_back(nullptr);

    pid_t pid = 0;
    const int spawned = ::posix_spawnp(&pid, argv[0], &actions, &attributes, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    ::close(out[1]);
    ::close(err[1]);
    if (spawned != 0) {
        ::close(out[0]);
        ::close(err[0]);
        return outcome;
    }
    outcome.launched = true;

    const auto deadline = Clock::now() + std::chrono::duration<double>(timeoutSeconds);
    pollfd fds[2] = {{out[0], POLLIN, 0}, {err[0], POLLIN, 0}};
    QByteArray* sinks[2] = {&outcome.out, &outcome.err};
    int open = 2;
    int status = 0;
    bool exited = false;
    char buffer[65536];
    while (open > 0) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0) break;
        // Wake at least every 20 ms to notice a child that exited while something it started
        // still holds the pipes open.
        const bool exitedBefore = exited;
        const int ready = ::poll(fds, 2, int(std::min<long long>(left, 20)));
        if (ready < 0 && errno != EINTR) break;
        for (int i = 0; i < 2 && ready > 0; ++i) {
            if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP | POLLERR))) continue;
            const ssize_t n = ::read(fds[i].fd, buffer, sizeof buffer);
            if (n > 0) {
                sinks[i]->append(buffer, n);
            } else if (n == 0 || errno != EINTR) {
                fds[i].fd = -1;
                --open;
            }
        }
        if (!exited && ::waitpid(pid, &status, WNOHANG) == pid) exited = true;
        // Gone before this look and nothing came: what is left holds the pipes open, not the child.
        if (exitedBefore && ready == 0) break;
    }
    // The pipes are closed (or the deadline passed): the child has until the deadline to exit.
    while (!exited) {
        if (::waitpid(pid, &status, WNOHANG) == pid) {
            exited = true;
        } else {
            if (Clock::now() >= deadline) break;
            ::usleep(5000);
        }
    }
    if (!exited) {
        outcome.timedOut = true;
        terminateGroup(pid, status);
    } else if (open > 0) {
        ::kill(-pid, SIGKILL);  // children it left behind, still holding the pipes
    }
    ::close(out[0]);
    ::close(err[0]);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

std::optional<QString> run(const QStringList& arguments, double timeoutSeconds) {
    const Outcome o = exec(arguments, timeoutSeconds);
    if (!o.succeeded()) return std::nullopt;
    const QString text = QString::fromUtf8(o.out);
    if (text.toUtf8() != o.out) return std::nullopt;  // not valid UTF-8
    return text;
}

}  // namespace Shell
