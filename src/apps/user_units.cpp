#include "apps/user_units.h"

#include <sys/stat.h>

#include <QMap>

#include "apps/sorted_entries.h"
#include "core/home.h"
#include "core/paths.h"
#include "platform/command_line.h"
#include "platform/shell.h"
#include "platform/xdg.h"

namespace {

constexpr double systemctlSeconds = 5.0;

const QString serviceSuffix = QStringLiteral(".service");

bool isMask(const QString& path) {
    struct stat st;
    const QByteArray bytes = Paths::toBytes(path);
    if (::stat(bytes.constData(), &st) != 0) return false;
    return S_ISCHR(st.st_mode) || (S_ISREG(st.st_mode) && st.st_size == 0);  // /dev/null, or an empty file
}

// "sync@laptop.service" → "sync@.service": enabling an instance enables its template's file.
QString templateOf(const QString& name) {
    const qsizetype at = name.indexOf(QLatin1Char('@'));
    return at < 0 ? name : name.left(at + 1) + serviceSuffix;
}

bool canBeEnabled(const KeyFile& unit) {
    for (const char* key : {"WantedBy", "RequiredBy"})
        for (const QString& v : unit.values(QStringLiteral("Install"), QLatin1String(key)))
            if (!v.trimmed().isEmpty()) return true;
    return false;
}

// Fills the specifiers a program path may hold; nothing when another one is left, whose value
// only the service manager knows.
std::optional<QString> fillSpecifiers(const QString& text, const QString& home) {
    QString out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != QLatin1Char('%')) {
            out.append(text[i]);
        } else if (i + 1 < text.size() && text[i + 1] == QLatin1Char('h')) {
            out.append(home);
            ++i;
        } else if (i + 1 < text.size() && text[i + 1] == QLatin1Char('%')) {
            out.append(QLatin1Char('%'));
            ++i;
        } else {
            return std::nullopt;
        }
    }
    return out;
}

}  // namespace

namespace UserUnits {

QList<Folder> folders(const SystemFolders& system) {
    return {{Xdg::configHome() + QStringLiteral("/systemd/user"), false},
            {system.userUnitsAdmin, true},
            {Xdg::dataHome() + QStringLiteral("/systemd/user"), false},
            {system.userUnitsVendor, true}};
}

std::optional<QStringList> command(const KeyFile& unit, const QString& home) {
    QString line;
    for (const QString& v : unit.values(QStringLiteral("Service"), QStringLiteral("ExecStart")))
        if (v.isEmpty() || line.isEmpty()) line = v;  // an empty assignment starts the list again
    if (line.isEmpty()) return std::nullopt;
    qsizetype skip = 0;
    while (skip < line.size() && QStringLiteral("-@:+!").contains(line[skip])) ++skip;
    auto args = CommandLine::split(line.mid(skip));
    if (!args || args->isEmpty()) return std::nullopt;
    for (QString& a : *args) a = fillSpecifiers(a, home).value_or(a);
    return args;
}

QHash<QString, bool> parseIsEnabled(const QString& output, const QStringList& names) {
    QStringList lines;
    for (const QString& l : output.split(QLatin1Char('\n')))
        if (!l.trimmed().isEmpty()) lines.append(l.trimmed());
    QHash<QString, bool> out;
    if (lines.size() != names.size()) return out;
    for (qsizetype i = 0; i < names.size(); ++i) {
        const QString& s = lines[i];
        if (s == QLatin1String("enabled") || s == QLatin1String("enabled-runtime")) out.insert(names[i], true);
        else if (s == QLatin1String("disabled") || s.startsWith(QLatin1String("masked"))) out.insert(names[i], false);
    }
    return out;
}

QList<Unit> list(const SystemFolders& system, const std::optional<QString>& systemctl) {
    struct Definition {
        QString path;
        bool systemWide;
    };
    QMap<QString, QList<Definition>> definitions;  // name → its files, in order of precedence
    QSet<QString> wanted;                          // names (templates for instances) linked from a wants folder
    for (const Folder& f : folders(system)) {
        for (const Walker::Entry& e : sortedEntries(f.path)) {
            const QString path = f.path + QLatin1Char('/') + e.name;
            if (e.isDir && (e.name.endsWith(QLatin1String(".wants")) || e.name.endsWith(QLatin1String(".requires")))) {
                for (const Walker::Entry& link : sortedEntries(path)) wanted.insert(templateOf(link.name));
            } else if (!e.isDir && e.name.endsWith(serviceSuffix) && e.name.size() > serviceSuffix.size()) {
                definitions[e.name].append({path, f.systemWide});
            }
        }
    }

    QList<Unit> units;
    for (auto it = definitions.cbegin(); it != definitions.cend(); ++it) {
        QList<Definition> defs = it.value();
        const bool masked = isMask(defs.first().path);
        if (masked) defs.removeFirst();
        if (defs.isEmpty()) continue;
        const auto file = KeyFile::read(defs.first().path, KeyFile::Syntax::systemdUnit);
        if (!file) continue;
        Unit u;
        u.name = it.key();
        u.path = defs.first().path;
        u.needsAdmin = defs.first().systemWide;
        u.description = file->value(QStringLiteral("Unit"), QStringLiteral("Description")).value_or(QString());
        u.command = command(*file, Home::path()).value_or(QStringList());
        u.enabled = !masked && wanted.contains(u.name);
        if (u.needsAdmin && !u.enabled && !masked && !canBeEnabled(*file)) continue;
        units.append(u);
    }

    if (systemctl && !units.isEmpty()) {
        QStringList names;
        for (const Unit& u : units) names.append(u.name);
        const Shell::Outcome ran = Shell::exec(QStringList{*systemctl, QStringLiteral("--user"), QStringLiteral("is-enabled"),
                                                           QStringLiteral("--")} + names,
                                               systemctlSeconds);
        if (ran.launched && !ran.timedOut) {
            const QHash<QString, bool> said = parseIsEnabled(QString::fromUtf8(ran.out), names);
            for (Unit& u : units) u.enabled = said.value(u.name, u.enabled);
        }
    }
    return units;
}

}  // namespace UserUnits
