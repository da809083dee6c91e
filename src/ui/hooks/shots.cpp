#include "ui/hooks/shots.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPainter>
#include <QPixmap>
#include <QTextStream>
#include <QTimer>
#include <QTreeView>

#include "model/model.h"
#include "ui/theme/theme.h"
#include "ui/dialogs/confirm_sheet.h"
#include "ui/pages/clean_page.h"
#include "ui/widgets/finding_model.h"
#include "ui/dialogs/welcome_sheet.h"
#include "ui/window/main_window.h"
#include "ui/window/modal_host.h"
#include "ui/window/sidebar.h"

namespace Shots {
namespace {

void settle(int ms) {
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < ms) QApplication::processEvents(QEventLoop::AllEvents, 20);
}

bool ready(const Model& model) {
    // With "QUARLE_SCAN_PAUSE" the pictures show the scan in progress.
    if (!qEnvironmentVariableIsEmpty("QUARLE_SCAN_PAUSE")) return model.scanning();
    return model.scan().has_value() && !model.scanning();
}

// The window dimmed with a sheet over it, as a person sees it (the sheet is a window of its own).
QPixmap withSheet(QWidget& window, QWidget* sheet) {
    QPixmap picture = window.grab();
    if (!sheet) return picture;
    const QPixmap over = sheet->grab();
    QPainter p(&picture);
    p.fillRect(picture.rect(), QColor(0, 0, 0, Theme::current() == Theme::Scheme::night ? 120 : 70));
    const QPoint at((picture.width() - over.width()) / 2, std::max(40, (picture.height() - over.height()) / 3));
    p.drawPixmap(at, over);
    p.setPen(window.palette().color(QPalette::Mid));
    p.drawRect(QRect(at, over.size()).adjusted(-1, -1, 0, 0));
    return picture;
}

// The app whose leftovers show the most kinds of confidence, so the picture shows every badge.
std::optional<InstalledApp> mostBadges(const QList<InstalledApp>& apps) {
    std::optional<InstalledApp> best;
    qsizetype most = 0;
    for (const InstalledApp& a : apps) {
        QSet<Confidence> kinds;
        for (const Leftover& l : a.leftovers) kinds.insert(l.confidence);
        if (kinds.size() > most) best = a, most = kinds.size();
    }
    return best;
}

// Storage opened at a folder below the home (given relative to it), or the largest way down.
void openStorage(Model& model, const QString& relative) {
    if (!model.scan()) return;
    const SpaceNode& home = model.scan()->home;
    if (home.find(home.path + QLatin1Char('/') + relative)) return model.spaceReveal(home.path + QLatin1Char('/') + relative);
    const SpaceNode* at = &home;
    for (int depth = 0; depth < 2; ++depth) {
        const auto next = std::find_if(at->kids.begin(), at->kids.end(), [](const SpaceNode& k) { return k.isDir && !k.kids.isEmpty(); });
        if (next == at->kids.end()) break;
        at = &*next;
    }
    model.spaceReveal(at->path);
}

bool save(const QPixmap& picture, const QString& dir, const QString& name) {
    const QString file = QDir(dir).filePath(name + ".png");
    if (picture.save(file)) return true;
    QTextStream(stderr) << "quarle: cannot write " << file << "\n";
    return false;
}

}  // namespace

void take(MainWindow& window, Model& model, const QString& dir) {
    QTimer::singleShot(0, &window, [&window, &model, dir] {
        QTextStream err(stderr);
        if (!QDir().mkpath(dir)) {
            err << "quarle: cannot make the folder " << dir << " for the pictures\n";
            QApplication::exit(1);
            return;
        }
        window.resize(Theme::windowWidth, Theme::windowHeight);
        QElapsedTimer waited;
        waited.start();
        while (!ready(model) && waited.elapsed() < 30000) settle(50);
        if (model.scanning()) settle(2000);  // the walk's figures and first rows come in meanwhile
        const Appearance before = model.appearance();
        int failed = 0;
        for (const auto& [appearance, name] : {std::pair{Appearance::night, "night"}, {Appearance::paper, "paper"}}) {
            Theme::apply(appearance);
            const QString palette = QLatin1Char('-') + QLatin1String(name);
            for (int i = 0; i < pageCount; ++i) {
                // Storage three columns deep beside the map of the folder chosen.
                if (Page(i) == Page::space) openStorage(model, QStringLiteral("Library/Developer"));
                model.setPage(Page(i));
                // Clean with its first row open, to show parts with their own ticks and notes.
                if (auto* clean = qobject_cast<CleanPage*>(window.page(Page(i))); clean && Page(i) == Page::clean)
                    clean->view()->expand(clean->rows()->index(0, 0, clean->rows()->index(0, 0)));
                if (const auto app = Page(i) == Page::apps ? mostBadges(model.apps()) : std::nullopt) model.focusApp(*app);
                settle(120);
                // The welcome sheet over Home once, as the first start shows it; then it is read.
                if (Page(i) == Page::home && window.modals()->welcomeSheet()) {
                    failed += !save(withSheet(window, window.modals()->welcomeSheet()), dir, "welcome" + palette);
                    model.closeWelcome();
                    settle(60);
                }
                failed += !save(window.grab(), dir, pageSlug(Page(i)) + palette);
                // Storage's map alone, as its mode shows it.
                if (Page(i) == Page::space) {
                    const StorageMode mode = model.storageMode();
                    model.setStorageMode(StorageMode::map);
                    openStorage(model, QStringLiteral("Library"));
                    settle(120);
                    failed += !save(window.grab(), dir, "storage-map" + palette);
                    model.setStorageMode(mode);
                }
                // The confirmation of the Clean page's ticked rows once.
                if (Page(i) == Page::clean && appearance == Appearance::night && !model.scanning()) {
                    model.askClean(false);
                    QElapsedTimer asked;
                    asked.start();
                    while (!window.modals()->confirmSheet() && asked.elapsed() < 5000) settle(20);
                    settle(60);
                    if (ConfirmSheet* sheet = window.modals()->confirmSheet())
                        failed += !save(withSheet(window, sheet), dir, "confirm" + palette);
                    model.dismissConfirm();
                    settle(60);
                }
            }
        }
        Theme::apply(before);
        QApplication::exit(failed ? 1 : 0);
    });
}

}  // namespace Shots
