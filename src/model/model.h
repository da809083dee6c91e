#pragma once
// The one object that holds the state of every page: the scan and its progress, the user's ticks,
// the pending confirmation or question, the apps, History and the Storage page's browsing. It lives
// on the main thread; long work runs on background pools with copies of what it needs and comes
// back through Landings, where results that a newer request made stale are dropped.
//
// The operations are split by concern: model.cpp (creation, start-up, preferences), model_scan.cpp
// (scan lifecycle and derivations), model_ticks.cpp, model_clear.cpp, model_history.cpp,
// model_apps.cpp and model_storage.cpp.

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QThreadPool>
#include <QTimer>
#include <QUuid>
#include <functional>
#include <memory>
#include <optional>

#include "core/history_entry.h"
#include "core/picks.h"
#include "core/records.h"
#include "core/space_node.h"
#include "measure/progress.h"
#include "model/dialogs.h"
#include "model/landings.h"
#include "model/observed.h"
#include "model/page.h"
#include "model/services.h"
#include "model/space_details.h"
#include "removal/history_store.h"
#include "scan/early_rows.h"
#include "scan/scan_data.h"

class Model : public QObject {
    Q_OBJECT

public:
    using Clearable = QMap<QString, qint64>;  // folder path → bytes ticked for clearing inside it

    static constexpr int defaultKeepDays = 7;
    // The "keepDays" preference: days Quarle's items stay in the Trash.
    static int storedKeepDays();

    explicit Model(ModelServices services = ModelServices::real(), QObject* parent = nullptr);
    // Stops the running scan and waits for the background work still in flight.
    ~Model() override;

    // ---- Start-up, pages and preferences (model.cpp)
    void start();
    // `history` ← the store's entries (the demonstration's in demo mode).
    void loadHistory();
    bool demo() const { return demo_; }
    void setPage(Page page);
    void setShowMenuBar(bool show);
    void setAppearance(Appearance appearance);
    // The Apps page's order (the "appSort" preference).
    void setAppSort(AppSort order);
    // What the Storage page shows (the "storageMode" preference).
    void setStorageMode(StorageMode mode);
    // The welcome sheet was read; it does not open again by itself.
    void closeWelcome();
    // Opens the welcome sheet again (Settings offers it).
    void openWelcome();
    void dismissToast();
    void bumpKeys();
    void bumpFind();
    // Confirming a question clears it, then runs its action.
    void confirmAsk();
    void dismissAsk();
    void dismissConfirm();
    std::function<void()> openWindow;        // installed by the application
    std::function<void(bool)> applyMenuBar;  // installed by the application

    // ---- Scan lifecycle (model_scan.cpp)
    void rescan(bool restart);
    void recheckAccess();
    void rederive();
    void refreshNumbers();
    void trashChanged(qint64 emptied);
    void refreshVolume();
    // Bytes of History's items still in the Trash.
    qint64 inTrashBytes() const;
    const std::optional<ScanData>& data() const { return data_; }
    bool editedDuringScan() const { return editedDuringScan_; }
    qint64 deriveSeq() const { return deriveSeq_; }
    qint64 earlySeq() const { return earlySeq_; }
    const QUuid& scanToken() const { return scanToken_; }

    // ---- Ticks, picks and hidden rows (model_ticks.cpp)
    QList<Part> inside(const Finding& finding) const;
    QList<Part> chosen(const Finding& finding) const;
    bool isChosen(const Finding& finding, const Part& part) const;
    TickState tickState(const Finding& finding) const;
    void toggle(const Finding& finding);
    void togglePart(const Finding& finding, const Part& part);
    void pickAll(const Finding& finding, bool on);
    QList<Finding> suggested(bool developerOnly) const;
    void selectSuggested(bool developerOnly);
    void hideRow(const Finding& finding);
    void showRow(const QString& id);
    // The title of a hidden row as the last result named it; the id when no result had it.
    QString hiddenTitle(const QString& id) const;
    void neverClear(const Part& part);
    void allowClear(const QString& path);
    void setFocus(const std::optional<QString>& id);
    const QSet<QString>& unticked() const { return unticked_; }

    // ---- Clearing (model_clear.cpp)
    QList<Finding> clearing(bool developerOnly) const;
    void askClean(bool only);
    void askClean(const Finding& finding);
    void perform(const Confirm& confirm, bool freeNow);

    // ---- History actions (model_history.cpp)
    void restore(const HistoryEntry& entry, const std::optional<QSet<QString>>& only = std::nullopt);
    void emptyNow(const HistoryEntry& entry, bool confirmed);
    void emptyAll(bool confirmed);
    void setKeepDays(int days, bool confirmed);
    QString keepFor() const;

    // ---- Apps and login items (model_apps.cpp)
    void loadApps();
    void loadLoginItems();
    void focusApp(const InstalledApp& app);
    void focusOrphan(const Orphan& orphan);
    QSet<QString> defaultTicks(const std::optional<InstalledApp>& app) const;
    // Ticks or unticks one leftover of the focused app or orphan.
    void toggleLeftover(const QString& path);
    void askUninstall(const InstalledApp& app);
    void askRemoveOrphan(const Orphan& orphan);
    static QSet<QString> installerApps(const QList<Finding>& findings);
    qint64 appsChanges() const { return appsChanges_; }

    // ---- Storage browsing (model_storage.cpp)
    void open(const SpaceNode& node, int inColumn, bool record);
    void spaceGoBack();
    void spaceGoForward();
    // Moves the selection within its column; at either end it stays where it is.
    void spaceStep(int delta);
    void spaceIn();
    void spaceOut();
    void spaceGoUp();
    bool canGoUp() const;
    // The column that lists the selection; -1 without one.
    int selectionColumn() const;
    void spaceReveal(const QString& path);
    void askTrash(const SpaceNode& node);
    void askTrash(const QString& path, const QString& name, qint64 bytes);
    void trashCurrent();
    void recomputeClearable();
    SpaceStep rebuilt(const QList<SpaceNode>& columns, const std::optional<SpaceNode>& selection) const;
    void refreshLazyColumns();
    // Fills `spaceDetails` for `node` in the background (dates and kind read from the disk); a
    // reading that lands after the selection moved elsewhere is dropped.
    void readDetails(const SpaceNode& node);

    // Where background results land; tests hold and release them.
    Landings& landings() { return landings_; }
    // The hourly expiry timer.
    QTimer* expiryTimer() { return expiryTimer_; }

signals:
    // A removal, restore, emptying or keep-days change has finished and said so.
    void reported(const ActionReport& report);

    // ---- Observable fields
public:
    Q_PROPERTY(QString keepFor READ keepFor NOTIFY keepDaysChanged)
    QUARLE_OBSERVED(Page, page, assignPage)
    QUARLE_OBSERVED(std::optional<ScanResult>, scan, assignScan)
    QUARLE_OBSERVED(bool, scanning, assignScanning)
    QUARLE_OBSERVED(qint64, scannedFiles, assignScannedFiles)
    QUARLE_OBSERVED(qint64, scannedBytes, assignScannedBytes)
    QUARLE_OBSERVED(QList<EarlyRow>, early, assignEarly)
    QUARLE_OBSERVED(int, jobs, assignJobs)
    QUARLE_OBSERVED(std::optional<Ask>, ask, assignAsk)
    QUARLE_OBSERVED(QSet<QString>, ticked, assignTicked)
    QUARLE_OBSERVED(Picks, picks, assignPicks)
    QUARLE_OBSERVED(QSet<QString>, hiddenRows, assignHiddenRows)
    QUARLE_OBSERVED(std::optional<QString>, focus, assignFocus)
    QUARLE_OBSERVED(int, keysToken, assignKeysToken)
    QUARLE_OBSERVED(QList<InstalledApp>, apps, assignApps)
    QUARLE_OBSERVED(QList<Orphan>, orphans, assignOrphans)
    QUARLE_OBSERVED(bool, appsLoading, assignAppsLoading)
    QUARLE_OBSERVED(bool, appsLoaded, assignAppsLoaded)
    QUARLE_OBSERVED(std::optional<QString>, appFocus, assignAppFocus)
    QUARLE_OBSERVED(std::optional<QString>, orphanFocus, assignOrphanFocus)
    QUARLE_OBSERVED(QSet<QString>, leftoverTicks, assignLeftoverTicks)
    QUARLE_OBSERVED(QList<LoginItem>, loginItems, assignLoginItems)
    QUARLE_OBSERVED(bool, loginItemsLoading, assignLoginItemsLoading)
    QUARLE_OBSERVED(bool, loginItemsLoaded, assignLoginItemsLoaded)
    QUARLE_OBSERVED(QList<SpaceNode>, columns, assignColumns)
    QUARLE_OBSERVED(std::optional<SpaceNode>, spaceSelection, assignSpaceSelection)
    QUARLE_OBSERVED(QList<SpaceStep>, spaceBack, assignSpaceBack)
    QUARLE_OBSERVED(QList<SpaceStep>, spaceForward, assignSpaceForward)
    QUARLE_OBSERVED(Clearable, clearableIn, assignClearableIn)
    QUARLE_OBSERVED(bool, columnLoading, assignColumnLoading)
    QUARLE_OBSERVED(std::optional<SpaceDetails>, spaceDetails, assignSpaceDetails)
    QUARLE_OBSERVED(StorageMode, storageMode, assignStorageMode)
    QUARLE_OBSERVED(QList<HistoryEntry>, history, assignHistory)
    QUARLE_OBSERVED(std::optional<Confirm>, confirm, assignConfirm)
    QUARLE_OBSERVED(std::optional<QString>, toast, assignToast)
    QUARLE_OBSERVED(bool, showWelcome, assignShowWelcome)
    QUARLE_OBSERVED(std::optional<bool>, fullDiskAccess, assignFullDiskAccess)
    QUARLE_OBSERVED(Volume, volume, assignVolume)
    QUARLE_OBSERVED(bool, showMenuBar, assignShowMenuBar)
    QUARLE_OBSERVED(Appearance, appearance, assignAppearance)
    QUARLE_OBSERVED(AppSort, appSort, assignAppSort)
    QUARLE_OBSERVED(int, keepDays, assignKeepDays)
    QUARLE_OBSERVED(int, findToken, assignFindToken)

private:
    enum class Priority { userInitiated, utility };

    // Runs `work` on a pool; its result lands on the main thread as `job` and is handed to `land`.
    template <class Result>
    void inBackground(Priority priority, Job job, std::function<Result()> work,
                      std::function<void(Result)> land);
    // The same for work without a result.
    void inBackground(Priority priority, Job job, std::function<void()> work, std::function<void()> land);
    QDateTime now() const { return services_.now(); }

    // model_scan.cpp
    void startDemo();
    void startExpiry();
    // In the background: empties what waited longer than keepDays (with `expire`), notes what left
    // the Trash some other way (with `sync`), then hands the bytes emptied to trashChanged and `then`.
    void tidyTrash(bool expire, bool sync, std::function<void(qint64)> then = {});
    // Writes one preference; when it cannot be written the toast says so. False then.
    bool savePref(const QString& key, const QVariant& value);
    void finishScan(const QUuid& token, const std::shared_ptr<ScanCancel>& cancel, QPointer<QTimer> timer,
                    ScanData data, ScanResult result);
    void applyEarly(const QUuid& token, qint64 seq, const QList<EarlyRow>& rows);
    void deriveInBackground();
    void show(ScanResult result);
    void markEdited();

    // model_ticks.cpp
    void applyDefaultTicks();
    void changeTicked(QSet<QString> ticked);
    void changePicks(Picks picks);
    void tick(const Finding& finding);
    void untick(const Finding& finding);
    void resetParts(const Finding& finding);

    // model_apps.cpp
    bool runs(const InstalledApp& app) const;

    // model_clear.cpp
    // The row as clearing it removes it: narrowed to its chosen parts; nothing when none is chosen.
    std::optional<Finding> asCleared(const Finding& finding) const;
    void askFor(const QList<Finding>& findings);
    void landRemoval(const Confirm& confirm, bool freeNow, const Remover::Outcome& outcome,
                     const QList<Finding>& commandsDone, const QStringList& commandsFailed);
    void afterRemoving(const QStringList& paths);
    void afterAction();
    void finishAction(ActionReport report);

    // model_history.cpp
    void emptyEntries(const QList<HistoryEntry>& entries);
    void refindExtras(const QStringList& restored);

    // model_storage.cpp
    void listLazily(const SpaceNode& node, int inColumn);
    // Lists a folder on a pool; `stale` when Quarle changed the disk while it was listed.
    void listInBackground(const QString& path, std::function<void(QList<SpaceNode>, bool stale)> land);
    void installStep(const SpaceStep& step);
    void travel(bool back);
    void recordStep();
    void rebuildColumns();
    void storeListing(const QString& path, const QList<SpaceNode>& kids);

    ModelServices services_;
    Landings landings_;
    const bool demo_;
    std::shared_ptr<HistoryStore> store_;
    std::optional<ScanData> data_;
    std::optional<ScanResult> derived_;  // the last result before hidden rows were taken out
    std::shared_ptr<ScanCancel> scanCancel_;
    std::shared_ptr<WalkProgress> progress_;
    QPointer<QTimer> progressTimer_;
    QTimer* expiryTimer_ = nullptr;
    bool editedDuringScan_ = false;
    QSet<QString> unticked_;
    qint64 deriveSeq_ = 0;
    qint64 earlySeq_ = 0;
    mutable QHash<QString, QList<Part>> insideCache_;
    QUuid scanToken_;
    qint64 appsChanges_ = 0;
    QMap<QString, QList<SpaceNode>> lazyKids_;  // folders listed on demand, by path
    int listings_ = 0;                          // on-demand listings in flight
    qint64 diskEpoch_ = 0;  // raised by every removal and restore: listings made before are stale
    std::shared_ptr<ScanCancel> closing_;       // set when the model goes away: long loads stop
    std::unique_ptr<QThreadPool> userPool_;
    std::unique_ptr<QThreadPool> utilityPool_;
};

template <class Result>
void Model::inBackground(Priority priority, Job job, std::function<Result()> work,
                         std::function<void(Result)> land) {
    QThreadPool* pool = priority == Priority::userInitiated ? userPool_.get() : utilityPool_.get();
    pool->start([this, job, work = std::move(work), land = std::move(land)] {
        auto result = std::make_shared<Result>(work());
        // The model outlives this task: its destructor waits for both pools.
        QMetaObject::invokeMethod(
            this, [this, job, result, land] { landings_.land(job, [result, land] { land(std::move(*result)); }); },
            Qt::QueuedConnection);
    });
}
