#include "support/sandbox.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <QDir>
#include <atomic>
#include <cstdio>

#include "support/files.h"

namespace {
QString sandboxRoot;
std::atomic<int> scratchCount{0};
}  // namespace

namespace Sandbox {

void enter() {
    QByteArray pattern = "/tmp/quarle-test-XXXXXX";
    if (!::mkdtemp(pattern.data())) {
        std::perror("mkdtemp");
        std::abort();
    }
    ::chmod(pattern.constData(), 0755);  // tests that drop privileges must still get in
    sandboxRoot = QString::fromLocal8Bit(pattern);
    QDir().mkpath(home());
    QDir().mkpath(sandboxRoot + QStringLiteral("/tmp"));
    QDir().mkpath(sandboxRoot + QStringLiteral("/system"));
    ::chmod(Files::bytes(home()).constData(), 0755);
    const auto set = [](const char* name, const QString& value) {
        ::setenv(name, value.toLocal8Bit().constData(), 1);
    };
    set("HOME", home());
    set("QUARLE_ROOT", home());
    set("XDG_DATA_HOME", home() + QStringLiteral("/.local/share"));
    set("XDG_CONFIG_HOME", home() + QStringLiteral("/.config"));
    set("XDG_CACHE_HOME", home() + QStringLiteral("/.cache"));
    set("XDG_STATE_HOME", home() + QStringLiteral("/.local/state"));
    set("TMPDIR", sandboxRoot + QStringLiteral("/tmp"));
    // An empty system of its own: a scan of a Linux-shaped home never walks this machine's /usr.
    set("QUARLE_SYSTEM_ROOT", sandboxRoot + QStringLiteral("/system"));
    ::unsetenv("QUARLE_DEMO");
    ::unsetenv("QUARLE_SELFTEST");
    ::unsetenv("QUARLE_SCAN_PAUSE");
    ::unsetenv("XDG_DATA_DIRS");
}

void leave() {
    if (!sandboxRoot.isEmpty()) Files::removeTree(sandboxRoot);
}

QString root() { return sandboxRoot; }
QString home() { return sandboxRoot + QStringLiteral("/home"); }

QString scratch(const QString& hint) {
    const QString path = QStringLiteral("%1/%2-%3").arg(sandboxRoot, hint).arg(scratchCount.fetch_add(1));
    QDir().mkpath(path);
    ::chmod(Files::bytes(path).constData(), 0755);
    return path;
}

void clearHome() {
    Files::removeTree(home());
    QDir().mkpath(home());
    ::chmod(Files::bytes(home()).constData(), 0755);
}

}  // namespace Sandbox
