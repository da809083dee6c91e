#pragma once
// The list of every removal Quarle made, newest first, kept in one JSON file so that History can
// put items back after a restart and Quarle can later empty its own items from the Trash. One
// mutex guards the list and every write of the file.

#include <QList>
#include <QMutex>
#include <QString>
#include <QUuid>
#include <optional>

#include "core/history_entry.h"
#include "removal/history_text.h"

class HistoryStore {
public:
    // Reads `file` (by default the history of this home folder). A file that cannot be read or
    // decoded is moved aside as history.unreadable-SECONDS.json and the history starts empty.
    explicit HistoryStore(QString file = defaultFile());

    // Home::dataFolder() + "/Quarle/history.json".
    static QString defaultFile();

    const QString& url() const { return url_; }
    QList<HistoryEntry> entries() const;
    std::optional<HistoryEntry> current(const QUuid& id) const;
    // Puts the entry first and saves.
    void add(const HistoryEntry& entry);
    // Replaces the entry with the same id (or puts it first when there is none) and saves.
    void update(const HistoryEntry& entry);
    // How many times the file was written by this store.
    int saves() const;

private:
    void load();
    void save();  // with lock_ held

    const QString url_;
    mutable QMutex lock_;
    QList<HistoryEntry> list_;
    HistoryText text_;
    int saves_ = 0;
};
