// Creation, start-up, pages, preferences and the pending dialogs.

#include "model/model.h"

#include "core/prefs.h"
#include "demo/demo.h"
#include "model/sentences.h"

namespace {

const QString keepDaysKey = QStringLiteral("keepDays");
const QString neverClearKey = QStringLiteral("neverClear");
const QString hiddenRowsKey = QStringLiteral("hiddenRows");
const QString showMenuBarKey = QStringLiteral("showMenuBar");
const QString appearanceKey = QStringLiteral("appearance");
const QString welcomedKey = QStringLiteral("welcomed");
const QString appSortKey = QStringLiteral("appSort");
const QString storageModeKey = QStringLiteral("storageMode");

QSet<QString> stringSet(const QString& key) {
    const QStringList list = Prefs::stringList(key);
    return QSet<QString>(list.begin(), list.end());
}

std::unique_ptr<QThreadPool> pool(QThread::Priority priority) {
    auto p = std::make_unique<QThreadPool>();
    p->setThreadPriority(priority);
    // Scans, derivations and listings are few at a time; each walk fans out on threads of its own.
    p->setMaxThreadCount(std::max(QThread::idealThreadCount(), 2));
    return p;
}

}  // namespace

int Model::storedKeepDays() { return Prefs::integer(keepDaysKey, defaultKeepDays, 0, Prefs::maxKeepDays); }

Model::Model(ModelServices services, QObject* parent)
    : QObject(parent),
      services_(std::move(services)),
      demo_(Demo::isOn()),
      store_(std::make_shared<HistoryStore>()),
      closing_(std::make_shared<ScanCancel>()),
      userPool_(pool(QThread::NormalPriority)),
      utilityPool_(pool(QThread::LowPriority)) {
    Picks picks;
    const QStringList never = Prefs::stringList(neverClearKey);
    picks.never = QSet<QString>(never.begin(), never.end());
    picks_ = picks;
    hiddenRows_ = stringSet(hiddenRowsKey);
    showMenuBar_ = Prefs::value(showMenuBarKey, false).toBool();
    appearance_ = appearanceFromRaw(Prefs::value(appearanceKey).toString()).value_or(Appearance::system);
    keepDays_ = storedKeepDays();
    appSort_ = appSortFromRaw(Prefs::value(appSortKey).toString()).value_or(AppSort::size);
    storageMode_ = storageModeFromRaw(Prefs::value(storageModeKey).toString()).value_or(StorageMode::both);
    page_ = Page::home;
}

Model::~Model() {
    closing_->cancel();
    if (scanCancel_) scanCancel_->cancel();
    // Tasks post their results to this object; none may still run once it is gone.
    userPool_->waitForDone();
    utilityPool_->waitForDone();
}

void Model::inBackground(Priority priority, Job job, std::function<void()> work, std::function<void()> land) {
    inBackground<bool>(
        priority, job,
        [work = std::move(work)] {
            work();
            return true;
        },
        [land = std::move(land)](bool) { land(); });
}

void Model::start() {
    // The appearance is applied by the window, which observes `appearance`. The welcome sheet opens
    // on the first start on this home (the demonstration's preferences start empty every run);
    // closeWelcome() remembers it was read.
    assignShowWelcome(!Prefs::value(welcomedKey, false).toBool());
    if (demo_) {
        startDemo();
        return;
    }
    loadHistory();
    assignFullDiskAccess(services_.fullDiskAccess());
    rescan(false);
    startExpiry();
    refreshVolume();
}

void Model::loadHistory() { assignHistory(demo_ ? Demo::history(now()) : store_->entries()); }

void Model::setPage(Page page) { assignPage(page); }

void Model::setShowMenuBar(bool show) {
    savePref(showMenuBarKey, show);
    assignShowMenuBar(show);
    if (applyMenuBar) applyMenuBar(show);
}

void Model::setAppearance(Appearance appearance) {
    savePref(appearanceKey, rawValue(appearance));
    assignAppearance(appearance);
}

void Model::setAppSort(AppSort order) {
    savePref(appSortKey, rawValue(order));
    assignAppSort(order);
}

void Model::setStorageMode(StorageMode mode) {
    savePref(storageModeKey, rawValue(mode));
    assignStorageMode(mode);
}

void Model::closeWelcome() {
    savePref(welcomedKey, true);
    assignShowWelcome(false);
}

void Model::openWelcome() { assignShowWelcome(true); }

void Model::dismissToast() { assignToast(std::nullopt); }

bool Model::savePref(const QString& key, const QVariant& value) {
    if (Prefs::setValue(key, value)) return true;
    assignToast(Sentences::settingsNotSaved);
    return false;
}

void Model::bumpKeys() { assignKeysToken(keysToken_ + 1); }

void Model::bumpFind() { assignFindToken(findToken_ + 1); }

void Model::confirmAsk() {
    if (!ask_) return;
    const std::function<void()> action = ask_->action;
    assignAsk(std::nullopt);
    if (action) action();
}

void Model::dismissAsk() { assignAsk(std::nullopt); }

void Model::dismissConfirm() { assignConfirm(std::nullopt); }

QString rawValue(Appearance a) {
    switch (a) {
        case Appearance::system: return QStringLiteral("system");
        case Appearance::night: return QStringLiteral("night");
        case Appearance::paper: return QStringLiteral("paper");
    }
    return {};
}

std::optional<Appearance> appearanceFromRaw(const QString& raw) {
    for (Appearance a : {Appearance::system, Appearance::night, Appearance::paper})
        if (rawValue(a) == raw) return a;
    return std::nullopt;
}

QString rawValue(AppSort order) {
    switch (order) {
        case AppSort::size: return QStringLiteral("size");
        case AppSort::name: return QStringLiteral("name");
        case AppSort::lastUsed: return QStringLiteral("lastUsed");
    }
    return {};
}

QString rawValue(StorageMode m) {
    switch (m) {
        case StorageMode::columns: return QStringLiteral("columns");
        case StorageMode::map: return QStringLiteral("map");
        case StorageMode::both: return QStringLiteral("both");
    }
    return {};
}

std::optional<AppSort> appSortFromRaw(const QString& raw) {
    for (AppSort order : {AppSort::size, AppSort::name, AppSort::lastUsed})
        if (rawValue(order) == raw) return order;
    return std::nullopt;
}

std::optional<StorageMode> storageModeFromRaw(const QString& raw) {
    for (StorageMode m : {StorageMode::columns, StorageMode::map, StorageMode::both})
        if (rawValue(m) == raw) return m;
    return std::nullopt;
}
