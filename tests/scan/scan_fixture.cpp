#include "scan/scan_fixture.h"

#include <QMutex>

QList<EarlyRow> Scanned::lastEarly() const {
    qint64 newest = 0;
    QList<EarlyRow> rows;
    for (const auto& [seq, list] : early)
        if (seq > newest) {
            newest = seq;
            rows = list;
        }
    return rows;
}

Scanned scanSandbox(const Volume& volume) {
    Scanned s;
    QMutex lock;
    WalkProgress progress;
    s.data = Scanner::scan(progress, {}, [&](qint64 seq, const QList<EarlyRow>& rows) {
        QMutexLocker guard(&lock);
        s.early.append({seq, rows});
    });
    s.result = Scanner::derive(s.data, volume);
    return s;
}

const Finding* findingOf(const ScanResult& r, const QString& id) {
    for (const Finding& f : r.findings)
        if (f.id == id) return &f;
    return nullptr;
}

QStringList partNames(const Finding* f) {
    QStringList names;
    if (f)
        for (const Part& p : f->parts) names.append(p.name);
    names.sort();
    return names;
}
