#pragma once
// What the scan tests share: one whole scan of the sandbox home with every early report it made,
// and lookups in the result.

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <utility>

#include "scan/scanner.h"

struct Scanned {
    ScanData data;
    ScanResult result;
    QList<std::pair<qint64, QList<EarlyRow>>> early;
    // The rows of the report with the highest sequence number.
    QList<EarlyRow> lastEarly() const;
};

// Scans the sandbox home and derives the result for a disk of `volume`.
Scanned scanSandbox(const Volume& volume);

const Finding* findingOf(const ScanResult& r, const QString& id);
// Every part path of every finding.
QStringList allParts(const ScanResult& r);
// Each row's bytes by id, after checking that its parts add up to them (every byte of a row can be
// cleared through its parts) and that no part lies inside another (no byte is offered twice).
QMap<QString, qint64> checkedRows(const ScanResult& r);
// The names of a finding's parts, sorted; empty for none.
QStringList partNames(const Finding* f);
