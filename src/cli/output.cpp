#include "cli/output.h"

#include <unistd.h>

#include <cstdio>

#include "core/paths.h"

namespace Out {

QString escape(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if (u == u'\t' || (u >= 0x20 && u != 0x7F && !(u >= 0x80 && u < 0xA0))) {
            out.append(c);
        } else if (u == u'\n') {
            out.append(QLatin1String("\\n"));
        } else if (u == u'\r') {
            out.append(QLatin1String("\\r"));
        } else {
            out.append(QStringLiteral("\\x") + QString::number(int(u), 16).toUpper().rightJustified(2, QLatin1Char('0')));
        }
    }
    return out;
}

void raw(const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
}

void line(const QString& text) {
    raw(Paths::toBytes(escape(text)));
    std::fputc('\n', stdout);
}

void error(const QString& text) {
    std::fflush(stdout);
    const QByteArray bytes = "quarle: " + Paths::toBytes(escape(text)) + '\n';
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stderr);
}

bool isTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

}  // namespace Out
