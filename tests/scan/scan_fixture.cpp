#include "scan/scan_fixture.h"

#include <gtest/gtest.h>

#include <QMutex>

#include "core/paths.h"
#include "support/lists.h"

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

const Finding* findingOf(const ScanResult& r, const QString& id) { return findBy(r.findings, &Finding::id, id); }

QStringList allParts(const ScanResult& r) {
    QStringList all;
    for (const Finding& f : r.findings)
        for (const Part& p : f.parts) all.append(p.path);
    return all;
}

QMap<QString, qint64> checkedRows(const ScanResult& r) {
    QMap<QString, qint64> rows;
    for (const Finding& f : r.findings) {
        rows.insert(f.id, f.bytes);
        qint64 parts = 0;
        for (const Part& p : f.parts) parts += p.bytes;
        EXPECT_EQ(parts, f.bytes) << f.id.toStdString();
    }
    const QStringList all = allParts(r);
    for (qsizetype i = 0; i < all.size(); ++i)
        for (qsizetype k = 0; k < all.size(); ++k)
            EXPECT_TRUE(i == k || !Paths::isWithin(all[i], all[k])) << all[i].toStdString() << " in " << all[k].toStdString();
    return rows;
}

QStringList partNames(const Finding* f) {
    QStringList names;
    if (f)
        for (const Part& p : f->parts) names.append(p.name);
    names.sort();
    return names;
}
