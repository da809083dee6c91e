#include "scan/probes.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include "core/home.h"
#include "core/paths.h"
#include "measure/walker.h"
#include "platform/shell.h"
#include "scan/extras.h"
#include "scan/rows.h"

namespace {

// "com.apple.CoreSimulator.SimRuntime.iOS-16-0" → "iOS 16.0"; a key already written for people
// ("iOS 16.0") stays as it is.
QString runtimeName(const QString& key) {
    static const QString prefix = QStringLiteral("com.apple.CoreSimulator.SimRuntime.");
    if (!key.startsWith(prefix)) return key;
    QString rest = key.mid(prefix.size());
    const qsizetype dash = rest.indexOf(QLatin1Char('-'));
    if (dash < 0) return rest;
    return rest.left(dash) + QLatin1Char(' ') + rest.mid(dash + 1).replace(QLatin1Char('-'), QLatin1Char('.'));
}

}  // namespace

namespace Scanner {

const QStringList& snapshotCommand() {
    static const QStringList command{QStringLiteral("/usr/bin/tmutil"), QStringLiteral("listlocalsnapshots"),
                                     QStringLiteral("/")};
    return command;
}

const QStringList& simulatorCommand() {
    static const QStringList command{QStringLiteral("/usr/bin/xcrun"), QStringLiteral("simctl"), QStringLiteral("list"),
                                     QStringLiteral("devices"), QStringLiteral("unavailable"), QStringLiteral("-j")};
    return command;
}

QStringList parseSnapshots(const QString& text) {
    static const QString marker = QStringLiteral("com.apple.TimeMachine");
    QStringList names;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        const qsizetype at = line.indexOf(marker);
        if (at < 0) continue;
        // The name runs to the first blank: notes such as " (dataless)" are not part of it.
        QString name = line.mid(at);
        const qsizetype blank = name.indexOf(QRegularExpression(QStringLiteral("\\s")));
        if (blank >= 0) name.truncate(blank);
        names.append(name);
    }
    return names;
}

QStringList localSnapshots(const QStringList& command, double timeoutSeconds) {
    const std::optional<QString> out = Shell::run(command, timeoutSeconds);
    return out ? parseSnapshots(*out) : QStringList();
}

QList<Simulator> parseUnavailableSimulators(const QString& text) {
    // simctl may print warnings before the JSON.
    const qsizetype open = text.indexOf(QLatin1Char('{'));
    const qsizetype close = text.lastIndexOf(QLatin1Char('}'));
    if (open < 0 || close < open) return {};
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(text.mid(open, close - open + 1).toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || !doc.isObject()) return {};
    const QJsonObject devices = doc.object().value(QLatin1String("devices")).toObject();
    QList<Simulator> found;
    for (auto runtime = devices.begin(); runtime != devices.end(); ++runtime) {
        for (const QJsonValue& value : runtime.value().toArray()) {
            const QJsonObject device = value.toObject();
            const bool unavailable = device.contains(QLatin1String("availabilityError")) ||
                                     device.value(QLatin1String("isAvailable")) == QJsonValue(false);
            const QString dataPath = device.value(QLatin1String("dataPath")).toString();
            // Without a data folder there is nothing to show or measure.
            if (!unavailable || !dataPath.startsWith(QLatin1Char('/'))) continue;
            found.append({device.value(QLatin1String("name")).toString(), runtimeName(runtime.key()),
                          Paths::standardize(dataPath, Home::path())});
        }
    }
    return found;
}

std::optional<Finding> unavailableSimulators(const QStringList& command, double timeoutSeconds) {
    const std::optional<QString> out = Shell::run(command, timeoutSeconds);
    if (!out) return std::nullopt;
    const QList<Simulator> simulators = parseUnavailableSimulators(*out);
    if (simulators.isEmpty()) return std::nullopt;
    Finding f = extraRow(QStringLiteral("unavailablesims"));
    for (const Simulator& s : simulators) {
        const WalkResult size = Walker::size(s.dataPath, true);
        f.parts.append({s.name, s.dataPath, size.bytes, s.runtime, size.newest});
        f.partial = f.partial || size.denied > 0;
    }
    return Rows::finish(std::move(f), QStringLiteral("xcrun simctl · "), QStringLiteral("file"));
}

}  // namespace Scanner
