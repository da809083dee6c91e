#pragma once
// The list of every removal Quarle made, newest first, kept in one JSON file so that History can
// put items back after a restart and Quarle can later empty its own items from the Trash. One
// mutex guards the list and every write of the file.
//
// Other Quarle processes (the command line beside the window) write the same file: a store takes
// in the file again whenever another process replaced it, and every change is read, made and
// written under an exclusive lock on "history.json.lock", so that no process's entry is lost.

#include <sys/stat.h>

#include <QList>
#include <QMutex>
#include <QString>
#include <QUuid>
#include <functional>
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
    // Puts the entry first and saves. False when the file could not be written (a full disk, a
    // data folder that is a file): the change then lives only in this store.
    bool add(const HistoryEntry& entry);
    // Replaces the entry with the same id (or puts it first when there is none) and saves.
    bool update(const HistoryEntry& entry);
    // Calls `apply` on the current entry `id` under the lock that every Quarle process takes, so
    // that what it does on disk and in the entry happens with no other change in between; then
    // saves. Nothing is applied when there is no such entry.
    bool edit(const QUuid& id, const std::function<void(HistoryEntry&)>& apply);
    // How many times the file was written by this store.
    int saves() const;

private:
    // What tells one version of the file from another.
    struct Stamp {
        dev_t dev = 0;
        ino_t ino = 0;
        off_t size = 0;
        timespec mtime{}, ctime{};
        bool operator==(const Stamp& o) const;
    };
    static std::optional<Stamp> stampOf(const QString& path);

    // With lock_ held: takes in the file when another process replaced it since this store last
    // read or wrote it. A file that cannot be read is moved aside and the list kept.
    void refresh() const;
    void read() const;
    bool change(const std::function<void(QList<HistoryEntry>&)>& edit);
    bool save();  // with lock_ held

    const QString url_;
    mutable QMutex lock_;
    mutable QList<HistoryEntry> list_;
    mutable std::optional<Stamp> known_;  // the version list_ holds; nothing before the file exists
    HistoryText text_;
    int saves_ = 0;
};
