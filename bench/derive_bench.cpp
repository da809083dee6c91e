// How long deriving a scan result takes when its rows hold 10,000 parts: the model derives again
// after every clearing, so this must stay well under the time a person notices.

#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include "core/home.h"
#include "scan/scanner.h"

namespace {

// A home whose caches hold `parts` folders, with a few thousand more nodes around them.
ScanData bigScan(int parts) {
    ScanData d;
    d.home = {"Home", Home::path(), 0, true, {}, {}, {}};
    const QDateTime now = QDateTime::currentDateTimeUtc();
    SpaceNode caches{"Caches", Home::at("Library/Caches"), 0, true, {}, {}, {}};
    for (int i = 0; i < parts; ++i)
        caches.kids.append({QString("com.example.app%1").arg(i), caches.path + QString("/com.example.app%1").arg(i),
                            qint64(1000 + i % 997) * 4096, true, {}, now.addDays(-(i % 400)), {}});
    for (const SpaceNode& k : caches.kids) caches.bytes += k.bytes;
    SpaceNode::sortBySize(caches.kids);
    d.home.setKids(Home::at("Library"), {caches}, true);
    for (int i = 0; i < 3000; ++i) d.home.adjust(Home::at(QString("Documents/folder%1/sub").arg(i)), 50'000, true, true);
    d.home.bytes = 0;
    for (const SpaceNode& k : d.home.kids) d.home.bytes += k.bytes;
    d.outside = {{"/Applications", 40'000'000'000}, {"/Library", 20'000'000'000}, {"temp", 1'000'000'000}};
    d.fullDiskAccess = true;
    d.date = now;
    return d;
}

void deriveTenThousandParts(benchmark::State& state) {
    const ScanData data = bigScan(10'000);
    const Volume volume{"Disk", 1'000'000'000'000, 400'000'000'000, 400'000'000'000};
    qint64 parts = 0;
    for (auto _ : state) {
        const ScanResult r = Scanner::derive(data, volume);
        parts = 0;
        for (const Finding& f : r.findings) parts += f.parts.size();
        benchmark::DoNotOptimize(parts);
    }
    state.counters["parts"] = double(parts);
}
BENCHMARK(deriveTenThousandParts)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
