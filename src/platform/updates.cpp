#include "platform/updates.h"

#include <QObject>
#include <QThread>
#include <memory>

#include "platform/debian_packages.h"
#include "platform/shell.h"

namespace Updates {

Policy parsePolicy(const QString& output) {
    Policy p;
    bool inTable = false;
    for (const QString& raw : output.split(QLatin1Char('\n'))) {
        const QString line = raw.trimmed();
        const auto field = [&](const char* name) -> std::optional<QString> {
            const QLatin1String key(name);
            if (!line.startsWith(key)) return std::nullopt;
            const QString value = line.mid(key.size()).trimmed();
            return value == QLatin1String("(none)") ? QString() : value;
        };
        if (const auto v = field("Installed:"))
            p.installed = *v;
        else if (const auto v = field("Candidate:"))
            p.candidate = *v;
        else if (line.startsWith(QLatin1String("Version table:")))
            inTable = true;
        // Each version lists where it comes from: "500 http://… Packages" or "100 /var/lib/dpkg/status".
        else if (inTable && line.contains(QLatin1String("://")))
            p.fromRepository = true;
    }
    return p;
}

Channel ask(const QString& program) {
    Channel c;
    const QHash<QString, QString> owners = DebianPackages::owners({program}, 5.0);
    c.package = owners.value(program).section(QLatin1Char(','), 0, 0).trimmed();
    if (c.package.isEmpty()) return c;
    // Untranslated output: the field names are read. apt-cache only reads its local lists.
    if (const auto out = Shell::run({QStringLiteral("env"), QStringLiteral("LC_ALL=C"), QStringLiteral("apt-cache"),
                                     QStringLiteral("policy"), c.package},
                                    5.0);
        out && !out->trimmed().isEmpty())
        c.policy = parsePolicy(*out);
    return c;
}

void askInBackground(const QString& program, QObject* context, std::function<void(const Channel&)> done) {
    auto answer = std::make_shared<Channel>();
    QThread* thread = QThread::create([program, answer] { *answer = ask(program); });
    QObject::connect(thread, &QThread::finished, context, [answer, done = std::move(done)] { done(*answer); });
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    thread->start(QThread::LowPriority);
}

QString versionLine(const QString& version, const QString& revision) {
    const QString line = QStringLiteral("Quarle ") + version;
    return revision.isEmpty() ? line : line + QStringLiteral(" (revision %1)").arg(revision);
}

QString sentence(const std::optional<Channel>& channel) {
    if (!channel) return QStringLiteral("Finding out how updates arrive…");
    if (channel->package.isEmpty())
        return QStringLiteral("Built from source: a newer version comes from building a newer checkout.");
    const QString installed = QStringLiteral("Installed as the package \"%1\"").arg(channel->package);
    const std::optional<Policy>& p = channel->policy;
    if (!p) return installed + QStringLiteral(": updates arrive with your system's packages.");
    if (!p->candidate.isEmpty() && p->candidate != p->installed)
        return installed + QStringLiteral(": version %1 is available from your package manager.").arg(p->candidate);
    if (!p->fromRepository)
        return installed + QStringLiteral(" from a file: no package source offers it, so a newer version comes "
                                          "from installing a newer package file.");
    return installed + QStringLiteral(": updates arrive with your system's packages; none newer is known yet.");
}

}  // namespace Updates
