#include "platform/debian_packages.h"

#include <stdlib.h>

#include "core/paths.h"
#include "platform/shell.h"

namespace {

// /usr/bin/x ↔ /bin/x, /usr/sbin/x ↔ /sbin/x, /usr/lib/x ↔ /lib/x (and lib32, lib64, libx32).
QString mergedUsrTwin(const QString& path) {
    static const QStringList tops{QStringLiteral("/bin/"), QStringLiteral("/sbin/"), QStringLiteral("/lib/"),
                                  QStringLiteral("/lib32/"), QStringLiteral("/lib64/"), QStringLiteral("/libx32/")};
    static const QString usr = QStringLiteral("/usr");
    for (const QString& top : tops) {
        if (path.startsWith(usr + top)) return path.mid(usr.size());
        if (path.startsWith(top)) return usr + path;
    }
    return {};
}

QString resolved(const QString& path) {
    char* real = ::realpath(Paths::toBytes(path).constData(), nullptr);
    if (!real) return {};
    const QString out = Paths::fromBytes(QByteArray(real));
    ::free(real);
    return out;
}

}  // namespace

namespace DebianPackages {

QStringList spellings(const QString& path) {
    QStringList out;
    const auto add = [&](const QString& p) {
        if (!p.isEmpty() && !out.contains(p)) out.append(p);
    };
    for (const QString& p : {path, resolved(path)}) {
        add(p);
        add(mergedUsrTwin(p));
    }
    return out;
}

QHash<QString, QString> parseOwners(const QString& output) {
    QHash<QString, QString> out;
    for (const QString& line : output.split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1String("diversion by ")) || line.startsWith(QLatin1String("local diversion")))
            continue;
        const qsizetype colon = line.indexOf(QLatin1String(": /"));
        if (colon <= 0) continue;
        QStringList packages;
        for (QString p : line.left(colon).split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            p = p.trimmed();
            if (const qsizetype arch = p.indexOf(QLatin1Char(':')); arch > 0) p.truncate(arch);
            if (!p.isEmpty() && !packages.contains(p)) packages.append(p);
        }
        if (!packages.isEmpty()) out.insert(line.mid(colon + 2), packages.join(QStringLiteral(", ")));
    }
    return out;
}

QHash<QString, QString> owners(const QStringList& paths, double timeoutSeconds) {
    QHash<QString, QStringList> asked;  // path → its spellings
    QStringList args{QStringLiteral("dpkg"), QStringLiteral("-S")};
    for (const QString& path : paths) {
        // Output comes one path a line: a path with a line break in it could not be told apart.
        if (asked.contains(path) || !path.startsWith(QLatin1Char('/')) || path.contains(QLatin1Char('\n'))) continue;
        // dpkg -S takes patterns; a path with pattern characters in it cannot be asked exactly.
        if (path.contains(QLatin1Char('*')) || path.contains(QLatin1Char('?')) || path.contains(QLatin1Char('[')))
            continue;
        asked.insert(path, spellings(path));
        for (const QString& s : asked[path])
            if (!args.contains(s)) args.append(s);
    }
    QHash<QString, QString> out;
    if (asked.isEmpty()) return out;
    // dpkg exits with 1 when one of the paths belongs to no package; the others are still answered.
    const Shell::Outcome ran = Shell::exec(args, timeoutSeconds);
    if (!ran.launched || ran.timedOut) return out;
    const QHash<QString, QString> found = parseOwners(Paths::fromBytes(ran.out));  // names are bytes
    for (auto it = asked.cbegin(); it != asked.cend(); ++it)
        for (const QString& s : it.value())
            if (const auto f = found.constFind(s); f != found.constEnd()) {
                out.insert(it.key(), f.value());
                break;
            }
    return out;
}

}  // namespace DebianPackages
