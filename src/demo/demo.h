#pragma once
// The demonstration machine: an invented developer's Mac with a 1 TB disk that stands in for this
// one when QUARLE_DEMO is set. Everything is built in memory from fixed data and the given date, so
// it is the same on every run and never touches the disk.

#include <QDateTime>
#include <QList>

#include "core/history_entry.h"
#include "core/records.h"
#include "scan/scan_data.h"

namespace Demo {

// True when QUARLE_DEMO is set, whatever its value.
bool isOn();

Volume volume();
// A finished scan of the demonstration home (at Home::path()), dated `now`.
ScanData scanData(const QDateTime& now);
QList<InstalledApp> apps(const QDateTime& now);
QList<Orphan> orphans();
QList<LoginItem> loginItems();
// One or more entries in every state, newest first.
QList<HistoryEntry> history(const QDateTime& now);

}  // namespace Demo
