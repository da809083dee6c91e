#include "support/run_quarle.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <vector>

extern char** environ;

Ran runQuarle(const QList<QByteArray>& args, const QList<QByteArray>& env) {
    Ran ran;
    int out[2], err[2];
    if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0) return ran;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err[1], 2);

    std::vector<QByteArray> argStore{QByteArray(QUARLE_BINARY)};
    for (const QByteArray& a : args) argStore.push_back(a);
    std::vector<char*> argv;
    for (QByteArray& a : argStore) argv.push_back(a.data());
    argv.push_back(nullptr);
    std::vector<QByteArray> envStore;
    // A variable given in `env` replaces the inherited one: getenv() finds the first of two.
    const auto overridden = [&](const char* inherited) {
        for (const QByteArray& e : env)
            if (std::strncmp(inherited, e.constData(), std::size_t(e.indexOf('=') + 1)) == 0) return true;
        return false;
    };
    for (char** e = environ; *e; ++e)
        if (!overridden(*e)) envStore.emplace_back(*e);
    for (const QByteArray& e : env) envStore.push_back(e);
    std::vector<char*> envp;
    for (QByteArray& e : envStore) envp.push_back(e.data());
    envp.push_back(nullptr);

    pid_t pid = 0;
    const int spawned = ::posix_spawn(&pid, QUARLE_BINARY, &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    ::close(err[1]);
    if (spawned == 0) {
        pollfd fds[2] = {{out[0], POLLIN, 0}, {err[0], POLLIN, 0}};
        QByteArray* sinks[2] = {&ran.out, &ran.err};
        int open = 2;
        char buf[65536];
        while (open > 0 && ::poll(fds, 2, -1) > 0) {
            for (int i = 0; i < 2; ++i) {
                if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP))) continue;
                const ssize_t n = ::read(fds[i].fd, buf, sizeof buf);
                if (n > 0) {
                    sinks[i]->append(buf, n);
                } else {
                    fds[i].fd = -1;
                    --open;
                }
            }
        }
        int status = 0;
        ::waitpid(pid, &status, 0);
        ran.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    ::close(out[0]);
    ::close(err[0]);
    return ran;
}
