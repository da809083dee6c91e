#pragma once
// What the model tests share: the model's services with a clock the test sets and no app running,
// a scripted scan whose result the test writes, builders of rows and parts, and waiting on the
// model's own event loop.

#include <QDateTime>
#include <QList>
#include <QString>
#include <atomic>
#include <functional>
#include <memory>

#include "model/model.h"
#include "model/services.h"

namespace ModelTest {

inline const Volume disk{QStringLiteral("Disk"), 1'000'000'000'000, 400'000'000'000, 400'000'000'000};

// The real engines, with the test's clock, no app running and a disk whose figures the test sets.
// The test changes the figures only while no scan runs.
struct Machine {
    std::shared_ptr<QDateTime> clock = std::make_shared<QDateTime>(QDateTime::currentDateTimeUtc());
    // Identifiers of running apps and files of running programs, in one set.
    std::shared_ptr<QSet<QString>> running = std::make_shared<QSet<QString>>();
    std::shared_ptr<Volume> disk = std::make_shared<Volume>(ModelTest::disk);
    ModelServices services() const;
};

// A scan that measures nothing: each run returns an empty tree of the home, counts itself and
// adds `files` to the progress; derivations return `result` as the test last wrote it, with the
// number of the derivation in `seconds` so a test can tell results apart.
struct Scripted {
    std::shared_ptr<ScanResult> result = std::make_shared<ScanResult>();
    std::shared_ptr<std::atomic<int>> scans = std::make_shared<std::atomic<int>>(0);
    std::shared_ptr<std::atomic<int>> derivations = std::make_shared<std::atomic<int>>(0);
    // Called on the scan's thread with its early-rows callback, before it returns.
    std::shared_ptr<std::function<void(const EarlyReport&, const Cancelled&)>> during =
        std::make_shared<std::function<void(const EarlyReport&, const Cancelled&)>>();
    qint64 files = 0;

    ModelServices services(const Machine& machine) const;
};

// A model that has scanned once (no start-up expiry around it) and shown the result.
std::unique_ptr<Model> scanned(const ModelServices& services);

// Runs the event loop until `done` holds (at most 30 seconds).
bool waitFor(const std::function<bool()>& done);
// Until no scan runs and no action is in flight.
bool settle(Model& model);
// Runs `act`, then waits for the report it leads to and for no action to be in flight.
ActionReport reportAfter(Model& model, const std::function<void()>& act);
// Performs the pending confirmation and waits for its report.
ActionReport performed(Model& model, bool freeNow = false);

// A part `ageDays` old by the machine's clock.
Part part(const QString& path, qint64 bytes, const QDateTime& now, double ageDays = 30, const QString& note = {});
// A row of these parts, its bytes and paths summed from them.
Finding row(const QString& id, Bucket bucket, const QList<Part>& parts, Removal removal = Removal::trash(),
            bool developer = false);
// The shown row with this id; an empty row when there is none.
Finding shown(const Model& model, const QString& id);
QStringList ids(const QList<Finding>& findings);
QStringList paths(const QList<Part>& parts);

}  // namespace ModelTest
