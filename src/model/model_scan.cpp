// The scan lifecycle: start-up, scans with restart and cancel, progress, early rows, derivations
// without a scan, the Trash's changes, Full Disk Access and the hourly expiry.

#include <QThread>
#include <utility>

#include "core/checked.h"
#include "demo/demo.h"
#include "model/model.h"
#include "model/sentences.h"
#include "removal/remover.h"

void Model::startDemo() {
    const QDateTime when = now();
    const ScanData data = Demo::scanData(when);
    assignFullDiskAccess(data.fullDiskAccess);
    show(services_.derive(data, Demo::volume()));  // the default ticks are the suggested rows
    assignApps(Demo::apps(when));
    assignOrphans(Demo::orphans());
    assignAppsLoaded(true);
    assignLoginItems(Demo::loginItems());
    assignLoginItemsLoaded(true);
    loadHistory();
    if (!apps_.isEmpty()) focusApp(apps_.first());
    refreshVolume();
}

void Model::startExpiry() {
    tidyTrash(true, true);
    expiryTimer_ = new QTimer(this);
    expiryTimer_->setInterval(services_.expiryEvery);
    connect(expiryTimer_, &QTimer::timeout, this, [this] { tidyTrash(true, false); });
    expiryTimer_->start();
}

void Model::tidyTrash(bool expire, bool sync, std::function<void(qint64)> then) {
    const int days = keepDays_;
    const QDateTime when = now();
    const std::shared_ptr<HistoryStore> store = store_;
    assignJobs(jobs_ + 1);
    inBackground<qint64>(
        Priority::utility, Job::expiry,
        [store, days, when, expire, sync] {
            qint64 emptied = expire ? Remover::expire(*store, days, when).bytes : 0;
            if (sync) emptied = Checked::add(emptied, Remover::syncWithTrash(*store));
            return emptied;
        },
        [this, then = std::move(then)](qint64 emptied) {
            assignJobs(jobs_ - 1);
            trashChanged(emptied);
            if (then) then(emptied);
        });
}

void Model::refreshVolume() { assignVolume(demo_ ? Demo::volume() : services_.volume()); }

qint64 Model::inTrashBytes() const {
    qint64 total = 0;
    for (const HistoryEntry& e : store_->entries()) {
        if (e.state != HistoryEntry::State::inTrash) continue;
        for (const HistoryEntry::Moved& m : e.moved) total = Checked::add(total, m.bytes);
    }
    return total;
}

void Model::rescan(bool restart) {
    if (demo_) return;
    if (scanning_) {
        if (!restart) return;
        scanCancel_->cancel();
    }
    delete progressTimer_.data();  // the cancelled scan's timer
    const auto cancel = std::make_shared<ScanCancel>();
    scanCancel_ = cancel;
    earlySeq_ = 0;
    editedDuringScan_ = false;
    assignScanning(true);
    assignScannedFiles(0);
    assignScannedBytes(0);
    assignVolume(services_.volume());
    const auto progress = std::make_shared<WalkProgress>();
    progress_ = progress;
    const QUuid token = QUuid::createUuid();
    scanToken_ = token;

    auto* timer = new QTimer(this);
    timer->setInterval(services_.progressEvery);
    connect(timer, &QTimer::timeout, this, [this, progress] {
        assignScannedFiles(progress->files());
        assignScannedBytes(progress->bytes());
    });
    timer->start();
    progressTimer_ = timer;

    const qint64 inTrash = inTrashBytes();
    const std::optional<double> pause = scanPause(qEnvironmentVariable("QUARLE_SCAN_PAUSE"));
    const EarlyReport early = [this, token](qint64 seq, const QList<EarlyRow>& rows) {
        QMetaObject::invokeMethod(
            this, [this, token, seq, rows] { landings_.land(Job::early, [=, this] { applyEarly(token, seq, rows); }); },
            Qt::QueuedConnection);
    };
    const ModelServices s = services_;
    const std::shared_ptr<ScanCancel> closing = closing_;
    inBackground<std::pair<ScanData, ScanResult>>(
        Priority::userInitiated, Job::scan,
        [s, progress, cancel, closing, early, inTrash, pause] {
            const Cancelled cancelled = [cancel, closing] { return cancel->stopped() || closing->stopped(); };
            ScanData data = s.scan(*progress, cancelled, early);
            if (pause && !cancelled()) QThread::usleep(static_cast<unsigned long>(*pause * 1e6));
            data.quarleTrash = inTrash;
            ScanResult result = s.derive(data, s.volume());
            return std::pair{std::move(data), std::move(result)};
        },
        [this, token, cancel, timer = QPointer<QTimer>(timer)](std::pair<ScanData, ScanResult> done) {
            finishScan(token, cancel, timer, std::move(done.first), std::move(done.second));
        });
}

void Model::finishScan(const QUuid& token, const std::shared_ptr<ScanCancel>& cancel, QPointer<QTimer> timer,
                       ScanData data, ScanResult result) {
    delete timer.data();
    if (token != scanToken_ || cancel->stopped()) return;  // a newer scan owns the state
    if (editedDuringScan_) {
        // Quarle changed the disk while the walk ran: these figures are stale, measure again.
        assignScanning(false);
        rescan(false);
        return;
    }
    data_ = std::move(data);
    deriveSeq_ = Checked::add(deriveSeq_, 1);
    assignScanning(false);
    assignEarly({});
    assignFullDiskAccess(data_->fullDiskAccess);
    show(std::move(result));
}

void Model::applyEarly(const QUuid& token, qint64 seq, const QList<EarlyRow>& rows) {
    if (token != scanToken_ || !scanning_ || seq <= earlySeq_) return;  // late, out of order, or another scan's
    earlySeq_ = seq;
    // Rows the user hid stay hidden while the scan runs, as they do in its result.
    QList<EarlyRow> shown;
    for (const EarlyRow& row : rows)
        if (!hiddenRows_.contains(row.id)) shown.append(row);
    assignEarly(shown);
}

void Model::refreshNumbers() {
    if (!data_) return;
    data_->quarleTrash = inTrashBytes();
    deriveInBackground();
}

void Model::deriveInBackground() {
    deriveSeq_ = Checked::add(deriveSeq_, 1);
    const qint64 seq = deriveSeq_;
    const ScanData copy = *data_;
    const Volume volume = services_.volume();  // the figures at the moment of the request
    const auto derive = services_.derive;
    inBackground<ScanResult>(
        Priority::userInitiated, Job::derive, [derive, copy, volume] { return derive(copy, volume); },
        [this, seq](ScanResult result) {
            if (seq == deriveSeq_) show(std::move(result));  // only the latest request is shown
        });
}

void Model::rederive() {
    if (data_)
        refreshNumbers();
    else if (derived_)
        show(*derived_);
}

void Model::markEdited() {
    if (scanning_) editedDuringScan_ = true;
}

void Model::trashChanged(qint64 emptied) {
    loadHistory();
    if (emptied <= 0) {
        if (!scanning_) refreshNumbers();  // a running scan brings fresh figures anyway
        return;
    }
    markEdited();
    if (!data_) return;
    data_->emptied(emptied);
    refreshNumbers();
}

void Model::recheckAccess() {
    if (demo_) return;
    const std::optional<bool> probe = services_.fullDiskAccess();
    if (fullDiskAccess_ == false && probe == true) {
        assignToast(Sentences::accessGranted);
        assignFullDiskAccess(true);
        rescan(true);
    } else {
        assignFullDiskAccess(probe);
    }
    tidyTrash(false, true);
}

void Model::show(ScanResult result) {
    derived_ = result;
    result.findings.removeIf([this](const Finding& f) { return hiddenRows_.contains(f.id); });
    // Folders listed on demand keep their children until they are listed again.
    for (auto it = lazyKids_.begin(); it != lazyKids_.end();) {
        const SpaceNode* node = result.home.find(it.key());
        if (!node || !node->isDir) {
            it = lazyKids_.erase(it);
            continue;
        }
        if (node->kids.isEmpty()) result.home.setKids(it.key(), it.value(), false);
        ++it;
    }
    insideCache_.clear();
    assignScan(std::move(result));
    applyDefaultTicks();
    recomputeClearable();
    rebuildColumns();
    refreshLazyColumns();
}
