#include "platform/command_line.h"

#include <sys/stat.h>
#include <unistd.h>

#include "core/paths.h"

namespace CommandLine {

std::optional<QStringList> split(const QString& line) {
    QStringList args;
    QString current;
    bool inArgument = false;
    QChar quote;  // the open quote, or null
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line[i];
        if (quote == QLatin1Char('\'')) {
            if (c == quote) quote = QChar();
            else current.append(c);
            continue;
        }
        if (c == QLatin1Char('\\') && i + 1 < line.size()) {
            current.append(line[++i]);
            inArgument = true;
        } else if (quote.isNull() && (c == QLatin1Char('\'') || c == QLatin1Char('"'))) {
            quote = c;
            inArgument = true;
        } else if (c == quote) {
            quote = QChar();
        } else if (quote.isNull() && (c == QLatin1Char(' ') || c == QLatin1Char('\t'))) {
            if (inArgument) args.append(current);
            current.clear();
            inArgument = false;
        } else {
            current.append(c);
            inArgument = true;
        }
    }
    if (!quote.isNull()) return std::nullopt;
    if (inArgument) args.append(current);
    return args;
}

QString program(const QStringList& args) {
    if (args.isEmpty()) return {};
    if (Paths::lastComponent(args[0]) != QLatin1String("env")) return args[0];
    // env's options that take the next argument: -u NAME, -C FOLDER.
    static const QStringList withValue{QStringLiteral("-u"), QStringLiteral("--unset"), QStringLiteral("-C"),
                                       QStringLiteral("--chdir")};
    for (qsizetype i = 1; i < args.size(); ++i) {
        if (withValue.contains(args[i])) ++i;
        else if (!args[i].startsWith(QLatin1Char('-')) && !args[i].contains(QLatin1Char('='))) return args[i];
    }
    return {};
}

QStringList searchPath() {
    QStringList out;
    for (const QString& dir : Paths::fromBytes(qgetenv("PATH")).split(QLatin1Char(':'), Qt::SkipEmptyParts))
        if (dir.startsWith(QLatin1Char('/'))) out.append(dir);
    if (out.isEmpty()) out = QStringList{QStringLiteral("/usr/local/bin"), QStringLiteral("/usr/bin"), QStringLiteral("/bin")};
    return out;
}

std::optional<QString> locate(const QString& program, const QStringList& folders) {
    struct stat st;
    if (program.startsWith(QLatin1Char('/')))
        return ::stat(Paths::toBytes(program).constData(), &st) == 0 ? std::optional(program) : std::nullopt;
    if (program.isEmpty() || program.contains(QLatin1Char('/'))) return std::nullopt;
    for (const QString& folder : folders) {
        const QString candidate = folder + QLatin1Char('/') + program;
        const QByteArray bytes = Paths::toBytes(candidate);
        if (::stat(bytes.constData(), &st) == 0 && S_ISREG(st.st_mode) && ::access(bytes.constData(), X_OK) == 0)
            return candidate;
    }
    return std::nullopt;
}

}  // namespace CommandLine
