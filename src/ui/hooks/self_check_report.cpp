#include "ui/hooks/self_check_report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace SelfCheck {

qsizetype Report::failures() const {
    qsizetype n = 0;
    for (const Step& s : steps) n += s.failure.isEmpty() ? 0 : 1;
    return n;
}

QString text(const Report& r) {
    QString out = QStringLiteral("Quarle self-check: %1 steps, %2 failed, %3 stalls of the main thread over %4 ms\n")
                      .arg(r.steps.size())
                      .arg(r.failures())
                      .arg(r.stalls.size())
                      .arg(r.stallLimitMs);
    for (const Step& s : r.steps) {
        out += QStringLiteral("%1 ms  %2  %3").arg(s.ms, 7).arg(!s.failure.isEmpty() ? QStringLiteral("FAIL") : s.note.isEmpty() ? QStringLiteral("ok  ") : QStringLiteral("skip"), s.name);
        if (!s.note.isEmpty()) out += QStringLiteral(" (%1)").arg(s.note);
        out += QLatin1Char('\n');
    }
    if (!r.stalls.isEmpty()) out += QStringLiteral("Stalls:\n");
    for (const Stall& s : r.stalls)
        out += QStringLiteral("%1 ms  during \"%2\" (%3 ms of it waiting for a processor)\n").arg(s.ms, 7).arg(s.step).arg(s.queuedMs);
    if (r.failures()) out += QStringLiteral("Failures:\n");
    for (const Step& s : r.steps)
        if (!s.failure.isEmpty()) out += QStringLiteral("  %1: expected %2\n").arg(s.name, s.failure);
    return out;
}

QByteArray json(const Report& r) {
    QJsonArray steps;
    for (const Step& s : r.steps) {
        QJsonObject o{{"name", s.name}, {"ms", s.ms}, {"ok", s.failure.isEmpty()}};
        if (!s.failure.isEmpty()) o.insert("expected", s.failure);
        if (!s.note.isEmpty()) o.insert("note", s.note);
        steps.append(o);
    }
    QJsonArray stalls;
    for (const Stall& s : r.stalls) stalls.append(QJsonObject{{"step", s.step}, {"ms", s.ms}, {"queuedMs", s.queuedMs}});
    const QJsonObject root{{"ok", exitStatus(r) == 0}, {"stallLimitMs", r.stallLimitMs}, {"steps", steps},
                           {"stalls", stalls}, {"failures", qint64(r.failures())}};
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

int exitStatus(const Report& r) { return r.failures() == 0 && r.stalls.isEmpty() ? 0 : 1; }

}  // namespace SelfCheck
