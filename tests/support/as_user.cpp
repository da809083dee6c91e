#include "support/as_user.h"

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

namespace AsUser {

bool canDrop() { return ::geteuid() == 0; }

std::optional<QByteArray> run(const std::function<QByteArray()>& body) {
    int pipeFds[2];
    if (::pipe(pipeFds) != 0) return std::nullopt;
    const pid_t pid = ::fork();
    if (pid < 0) return std::nullopt;
    if (pid == 0) {
        ::close(pipeFds[0]);
        if (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0) ::_exit(3);
        const QByteArray out = body();
        qsizetype done = 0;
        while (done < out.size()) {
            const ssize_t n = ::write(pipeFds[1], out.constData() + done, std::size_t(out.size() - done));
            if (n <= 0) ::_exit(4);
            done += n;
        }
        ::_exit(0);
    }
    ::close(pipeFds[1]);
    QByteArray out;
    char buf[4096];
    for (ssize_t n; (n = ::read(pipeFds[0], buf, sizeof buf)) > 0;) out.append(buf, n);
    ::close(pipeFds[0]);
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return std::nullopt;
    return out;
}

}  // namespace AsUser
