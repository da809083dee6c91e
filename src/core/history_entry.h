#pragma once
// One removal as recorded in the history.

#include <QDateTime>
#include <QList>
#include <QString>
#include <QUuid>
#include <optional>

struct HistoryEntry {
    enum class State { inTrash, emptied, restored, permanent };

    // One item moved to the Trash. `dev`, `ino` and `born` identify the trashed object so that a
    // restore or emptying never acts on a different file that later took the same name.
    struct Moved {
        QString original;
        QString trashed;
        qint64 bytes = 0;
        std::optional<qint32> dev;
        std::optional<quint64> ino;
        std::optional<double> born;

        bool operator==(const Moved&) const = default;
    };

    QUuid id;
    QDateTime date;
    QString title;
    qint64 bytes = 0;
    QList<Moved> moved;
    State state = State::inTrash;

    bool operator==(const HistoryEntry&) const = default;
};

QString rawValue(HistoryEntry::State);
std::optional<HistoryEntry::State> historyStateFromRaw(const QString&);
