#pragma once
// Tests run as root in CI, where permission bits deny nothing. To see what an ordinary user sees,
// a test runs a piece of itself in a child process that has switched to the unprivileged "nobody".

#include <QByteArray>
#include <functional>
#include <optional>

namespace AsUser {

constexpr unsigned nobody = 65534;

// True when this process can switch users (it runs as root).
bool canDrop();

// Runs `body` in a forked child as "nobody" and returns what it returned; nothing when the child
// failed to switch or died.
std::optional<QByteArray> run(const std::function<QByteArray()>& body);

}  // namespace AsUser
