#pragma once
// The report of the self-check run: each step with its time and, when it did not hold, what was
// expected; each time the main thread did not answer in time, with the step that was running.

#include <QByteArray>
#include <QList>
#include <QString>

namespace SelfCheck {

struct Step {
    QString name;
    qint64 ms = 0;
    QString failure;  // what was expected; empty when the step held
    QString note;     // why a step had nothing to do here ("nothing is ticked"), shown beside it
};

struct Stall {
    QString step;
    qint64 ms = 0;
    qint64 queuedMs = 0;  // of which the main thread waited for a processor (the machine's load)
};

struct Report {
    QList<Step> steps;
    QList<Stall> stalls;
    qint64 stallLimitMs = 50;

    qsizetype failures() const;
};

QString text(const Report& report);
QByteArray json(const Report& report);
// 0 when every step held and the main thread never stalled, 1 otherwise.
int exitStatus(const Report& report);

}  // namespace SelfCheck
