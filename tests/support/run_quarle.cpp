#include "support/run_quarle.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

extern char** environ;

Ran runQuarle(const QList<QByteArray>& args, const QList<QByteArray>& env, const QByteArray& input) {
    Ran ran;
    int in[2], out[2], err[2];
    if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0) return ran;
    // The input is small: it fits the pipe, so it is written whole before the program starts.
    if (::write(in[1], input.constData(), std::size_t(input.size())) != input.size()) return ran;
    ::close(in[1]);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err[1], 2);

    std::vector<QByteArray> argStore{QByteArray(QUARLE_BINARY)};
    for (const QByteArray& a : args) argStore.push_back(a);
    std::vector<char*> argv;
    for (QByteArray& a : argStore) argv.push_back(a.data());
    argv.push_back(nullptr);
    std::vector<QByteArray> envStore;
    // A variable given in `env` replaces the inherited one: getenv() answers with the first match.
    auto overridden = [&env](const char* entry) {
        const QByteArray whole(entry);
        const QByteArray name = whole.left(whole.indexOf('=') + 1);
        for (const QByteArray& e : env)
            if (e.startsWith(name)) return true;
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
    ::close(in[0]);
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
