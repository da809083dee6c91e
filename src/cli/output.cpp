#include "cli/output.h"

#include <unistd.h>

#include <cstdio>

#include "core/paths.h"

namespace Out {

void raw(const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
}

void line(const QString& text) {
    raw(Paths::toBytes(text));
    std::fputc('\n', stdout);
}

void error(const QString& text) {
    std::fflush(stdout);
    const QByteArray bytes = "quarle: " + Paths::toBytes(text) + '\n';
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stderr);
}

bool isTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

}  // namespace Out
