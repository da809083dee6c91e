#include "model_fixture.h"

#include <gtest/gtest.h>

#include "core/checked.h"
#include "core/home.h"
#include "core/paths.h"
#include "model/wait.h"
#include "support/lists.h"

namespace ModelTest {

ModelServices Machine::services() const {
    ModelServices s = ModelServices::real();
    s.now = [clock = clock] { return *clock; };
    s.runningApps = [running = running] { return *running; };
    s.runningFiles = [running = running] { return *running; };
    s.volume = [disk = disk] { return *disk; };
    return s;
}

ModelServices Scripted::services(const Machine& machine) const {
    ModelServices s = machine.services();
    s.scan = [scans = scans, during = during, files = files](WalkProgress& progress, const Cancelled& cancelled,
                                                              const EarlyReport& early) {
        const int n = ++*scans;
        progress.add(files, files * 1000);
        if (*during) (*during)(early, cancelled);
        ScanData d;
        d.home = SpaceNode{QStringLiteral("Home"), Home::path(), 0, true, {}, {}, {}};
        d.files = n;
        return d;
    };
    s.derive = [result = result, derivations = derivations](const ScanData& data, const Volume& volume) {
        ScanResult r = *result;
        r.volume = volume;
        r.files = data.files;  // which scan it came from
        r.seconds = ++*derivations;
        return r;
    };
    return s;
}

std::unique_ptr<Model> scanned(const ModelServices& services) {
    auto model = std::make_unique<Model>(services);
    model->rescan(false);
    EXPECT_TRUE(settle(*model));
    return model;
}

bool waitFor(const std::function<bool()>& done) { return ModelWait::until(done, std::chrono::seconds(30)); }

bool settle(Model& model) {
    return waitFor([&] { return !model.scanning() && model.jobs() == 0; });
}

ActionReport reportAfter(Model& model, const std::function<void()>& act) {
    std::optional<ActionReport> report;
    const auto connection = QObject::connect(&model, &Model::reported, [&](const ActionReport& r) { report = r; });
    act();
    EXPECT_TRUE(waitFor([&] { return report && model.jobs() == 0; }));
    QObject::disconnect(connection);
    return report.value_or(ActionReport{});
}

ActionReport performed(Model& model, bool freeNow) {
    return reportAfter(model, [&] { model.perform(*model.confirm(), freeNow); });
}

Part part(const QString& path, qint64 bytes, const QDateTime& now, double ageDays, const QString& note) {
    return {Paths::lastComponent(path), path, bytes, note, now.addSecs(-qint64(ageDays * 86400))};
}

Finding row(const QString& id, Bucket bucket, const QList<Part>& parts, Removal removal, bool developer) {
    Finding f;
    f.id = id;
    f.title = QStringLiteral("Row ") + id;
    f.bucket = bucket;
    f.removal = std::move(removal);
    f.developer = developer;
    f.parts = parts;
    for (const Part& p : parts) {
        f.paths.append(p.path);
        f.bytes = Checked::add(f.bytes, p.bytes);
    }
    return f;
}

Finding shown(const Model& model, const QString& id) {
    if (model.scan())
        for (const Finding& f : model.scan()->findings)
            if (f.id == id) return f;
    return {};
}

QStringList ids(const QList<Finding>& findings) { return fieldOf(findings, &Finding::id); }
QStringList paths(const QList<Part>& parts) { return fieldOf(parts, &Part::path); }

}  // namespace ModelTest
