#include "ui/hooks/self_check.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QPushButton>
#include <QStackedWidget>
#include <QTextStream>
#include <QTimer>
#include <QTreeView>
#include <QWindow>
#include <functional>

#include "model/model.h"
#include "ui/dialogs/ask_dialog.h"
#include "ui/dialogs/confirm_sheet.h"
#include "ui/dialogs/welcome_sheet.h"
#include "ui/hooks/watchdog.h"
#include "ui/pages/apps_page.h"
#include "ui/pages/clean_page.h"
#include "ui/pages/storage_page.h"
#include "ui/theme/theme.h"
#include "ui/tray/tray_icon.h"
#include "ui/widgets/app_detail.h"
#include "ui/widgets/column_browser.h"
#include "ui/widgets/space_map.h"
#include "ui/window/main_window.h"
#include "ui/window/modal_host.h"
#include "ui/window/sidebar.h"

// Delivers a key as the window system would: through the shortcut map to the focus widget. QtGui
// exports it for QTest; declaring it here keeps the test library out of the program.
Q_GUI_EXPORT void qt_handleKeyEvent(QWindow* w, QEvent::Type t, int k, Qt::KeyboardModifiers mods,
                                    const QString& text = QString(), bool autorep = false, ushort count = 1);

namespace SelfCheck {
namespace {

constexpr std::chrono::milliseconds stallLimit{50};

class Driver {
public:
    Driver(MainWindow& window, Model& model, TrayIcon& tray)
        : window_(window), model_(model), tray_(tray), watchdog_(&window, stallLimit) {}

    Report run();

private:
    // Runs one step; `body` returns what was expected when it did not hold, else nothing.
    void step(const QString& name, const std::function<QString()>& body);
    void skip(const QString& name, const QString& why) { report_.steps.append({name, 0, {}, why}); }
    bool waitFor(const std::function<bool()>& done, int ms);
    void settle(int ms) { waitFor([] { return false; }, ms); }
    void key(QWidget* target, int key, Qt::KeyboardModifiers mods = Qt::NoModifier, const QString& text = {});

    QString scanFinished(int ms) {
        return waitFor([this] { return model_.scan().has_value() && !model_.scanning(); }, ms)
                   ? QString()
                   : QStringLiteral("a finished scan within %1 s").arg(ms / 1000);
    }
    void pages();
    void cleanKeys();
    void storageKeys();
    // Opens the confirmation sheet with `open`, cancels it with Escape; what did not hold.
    QString sheetCancelled(const std::function<void()>& open);
    void confirmation();
    // Opens Apps, waits for the list and moves the focus with the keys; false when no app is listed.
    bool apps();
    void trayActions();
    void questions();
    void palettes();

    MainWindow& window_;
    Model& model_;
    TrayIcon& tray_;
    Watchdog watchdog_;
    Report report_;
};

bool Driver::waitFor(const std::function<bool()>& done, int ms) {
    QElapsedTimer waited;
    waited.start();
    while (!done()) {
        if (waited.elapsed() >= ms) return false;
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

void Driver::key(QWidget* target, int key, Qt::KeyboardModifiers mods, const QString& text) {
    QWindow* w = target->window()->windowHandle();
    if (!w) return;
    // Shortcuts go to the active window only; after a sheet closes the window may wait to be active.
    if (!target->window()->isActiveWindow()) {
        target->window()->activateWindow();
        waitFor([target] { return target->window()->isActiveWindow(); }, 1000);
    }
    qt_handleKeyEvent(w, QEvent::KeyPress, key, mods, text);
    qt_handleKeyEvent(w, QEvent::KeyRelease, key, mods, text);
    settle(30);
}

void Driver::step(const QString& name, const std::function<QString()>& body) {
    watchdog_.setStep(name);
    QElapsedTimer took;
    took.start();
    const QString failure = body();
    report_.steps.append({name, took.elapsed(), failure, {}});
    watchdog_.setStep(QStringLiteral("between steps"));
}

void Driver::pages() {
    for (int i = 0; i < pageCount; ++i) {
        const Page page = Page(i);
        step(QStringLiteral("Ctrl+%1 opens %2").arg(i + 1).arg(pageSlug(page)), [this, i, page] {
            key(&window_, Qt::Key_1 + i, Qt::ControlModifier);
            const bool shown = waitFor([&] { return model_.page() == page && window_.stack()->currentWidget() == window_.page(page); }, 2000);
            return shown ? QString() : QStringLiteral("the %1 page shown").arg(pageSlug(page));
        });
    }
}

void Driver::cleanKeys() {
    model_.setPage(Page::clean);
    settle(100);
    auto* page = qobject_cast<CleanPage*>(window_.page(Page::clean));
    QTreeView* view = page ? page->view() : nullptr;
    // Rows are findings under their bucket; the keys start on the first finding.
    const QModelIndex first = view ? view->model()->index(0, 0, view->model()->index(0, 0)) : QModelIndex();
    if (!first.isValid() || view->model()->rowCount() + view->model()->rowCount(first.parent()) < 3) {
        skip(QStringLiteral("the Clean page's keys"), QStringLiteral("fewer than two rows to move between"));
        return;
    }
    view->setFocus();
    view->setCurrentIndex(first);
    const auto pair = [&](const QString& name, int down, const QString& downText, int up, const QString& upText) {
        step(name, [&] {
            key(view, down, Qt::NoModifier, downText);
            const bool moved = view->currentIndex() != first;
            key(view, up, Qt::NoModifier, upText);
            return moved && view->currentIndex() == first ? QString() : QStringLiteral("a move to the next row and back");
        });
    };
    pair(QStringLiteral("Down and Up move the focus row"), Qt::Key_Down, {}, Qt::Key_Up, {});
    pair(QStringLiteral("j and k move like Down and Up"), Qt::Key_J, QStringLiteral("j"), Qt::Key_K, QStringLiteral("k"));
    step(QStringLiteral("Space ticks the focus row and Space again puts it back"), [&] {
        const QSet<QString> before = model_.ticked();
        key(view, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
        const bool changed = model_.ticked() != before;
        key(view, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
        return changed && model_.ticked() == before ? QString() : QStringLiteral("the ticks to change and come back");
    });
    if (view->model()->rowCount(first) > 0)
        step(QStringLiteral("Right opens the row and Left closes it"), [&] {
            key(view, Qt::Key_Right);
            const bool opened = view->isExpanded(first);
            key(view, Qt::Key_Left);
            return opened && !view->isExpanded(first) ? QString() : QStringLiteral("the row's parts shown, then hidden");
        });
    else
        skip(QStringLiteral("Right opens the row and Left closes it"), QStringLiteral("the first row has no parts"));
    step(QStringLiteral("Ctrl+F focuses the find field, Escape goes back to the rows"), [&] {
        key(view, Qt::Key_F, Qt::ControlModifier);
        const bool found = waitFor([&] { return page->find()->hasFocus(); }, 1000);
        key(page->find(), Qt::Key_Escape);
        return found && view->hasFocus() ? QString() : QStringLiteral("the find field focused, then the rows");
    });
}

void Driver::storageKeys() {
    model_.setPage(Page::space);
    settle(100);
    auto* page = qobject_cast<StoragePage*>(window_.page(Page::space));
    const QList<SpaceNode> top = model_.columns().isEmpty() ? QList<SpaceNode>() : model_.columns().first().kids;
    const auto folder = std::find_if(top.begin(), top.end(), [](const SpaceNode& n) { return n.isDir && n.kids.size() > 1; });
    if (!page || folder == top.end()) {
        skip(QStringLiteral("the Storage page's keys"), QStringLiteral("no folder of two items or more at the top of the home"));
        return;
    }
    const QString start = folder->path;
    model_.open(*folder, 0, true);
    settle(50);
    const auto keys = [&](int k, Qt::KeyboardModifiers mods = Qt::NoModifier) {
        QListView* column = page->browser()->currentColumn();
        column->setFocus();
        key(column, k, mods);
    };
    const auto at = [&] { return model_.spaceSelection() ? model_.spaceSelection()->path : QString(); };
    step(QStringLiteral("Right opens a folder in Storage, Down moves in it, Left comes back out"), [&] {
        keys(Qt::Key_Right);
        const bool in = model_.selectionColumn() == 1;
        const QString first = at();
        keys(Qt::Key_Down);
        const bool moved = at() != first;
        keys(Qt::Key_Left);
        return in && moved && at() == start ? QString() : QStringLiteral("into the folder, one down, and out again");
    });
    step(QStringLiteral("Alt+Left goes back in Storage, Alt+Right forward"), [&] {
        keys(Qt::Key_Left, Qt::AltModifier);
        const bool back = at() != start;
        keys(Qt::Key_Right, Qt::AltModifier);
        return back && at() == start ? QString() : QStringLiteral("one step back and forward again");
    });
    step(QStringLiteral("a click on the map opens that folder in the columns"), [&] {
        settle(50);
        SpaceMap* map = page->map();
        const QList<SpaceMap::Slice>& slices = map->slices();
        const auto slice = std::find_if(slices.begin(), slices.end(), [](const SpaceMap::Slice& s) { return s.isDir && !s.folded; });
        if (slice == slices.end()) return QStringLiteral("a folder on the map");
        const QString path = slice->path;
        const QPointF point = map->pointIn(int(slice - slices.begin()));
        for (QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent click(type, point, map->mapToGlobal(point), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(map, &click);
        }
        settle(30);
        return at() == path && map->folder().path == path ? QString() : QStringLiteral("%1 selected and mapped").arg(path);
    });
}

QString Driver::sheetCancelled(const std::function<void()>& open) {
    const QList<HistoryEntry> before = model_.history();
    open();
    if (!waitFor([&] { return window_.modals()->confirmSheet() && window_.modals()->confirmSheet()->isVisible(); }, 3000))
        return QStringLiteral("the confirmation sheet shown");
    key(window_.modals()->confirmSheet(), Qt::Key_Escape);
    if (!waitFor([&] { return !model_.confirm() && !window_.modals()->confirmSheet(); }, 3000))
        return QStringLiteral("the sheet closed and the confirmation withdrawn");
    settle(100);  // anything confirmed by mistake would land by now
    return model_.history() == before && !model_.jobs() ? QString() : QStringLiteral("History unchanged");
}

void Driver::confirmation() {
    const QString name = QStringLiteral("Ctrl+Backspace asks to confirm, Escape cancels");
    if (model_.clearing(false).isEmpty()) {
        skip(name, QStringLiteral("nothing is ticked"));
    } else {
        auto* page = qobject_cast<CleanPage*>(window_.page(Page::clean));
        model_.setPage(Page::clean);
        step(name, [&] {
            return sheetCancelled([&] {
                page->view()->setFocus();
                key(page->view(), Qt::Key_Backspace, Qt::ControlModifier);
            });
        });
    }
    const QString uninstall = QStringLiteral("Uninstall… asks to confirm, Escape cancels");
    if (!apps()) {
        skip(uninstall, QStringLiteral("no app is installed"));
        return;
    }
    auto* page = qobject_cast<AppsPage*>(window_.page(Page::apps));
    step(uninstall, [&] { return sheetCancelled([&] { page->detail()->removeButton()->click(); }); });
}

bool Driver::apps() {
    const QString name = QStringLiteral("Apps lists the apps when first shown");
    model_.setPage(Page::apps);
    auto* page = qobject_cast<AppsPage*>(window_.page(Page::apps));
    step(name, [&] {
        return waitFor([&] { return model_.appsLoaded() && !model_.appsLoading(); }, 60000) ? QString()
                                                                                           : QStringLiteral("the list within a minute");
    });
    if (model_.apps().isEmpty()) return false;
    const QModelIndex first = page->view()->model()->index(0, 0);
    step(QStringLiteral("an app has the focus"), [this] {
        return waitFor([this] { return model_.appFocus().has_value(); }, 1000) ? QString() : QStringLiteral("a focused app");
    });
    if (page->view()->model()->rowCount() < 2) {
        skip(QStringLiteral("Down and Up move the focus between apps"), QStringLiteral("only one app"));
        return true;
    }
    page->view()->setFocus();
    page->view()->setCurrentIndex(first);
    step(QStringLiteral("Down and Up move the focus between apps"), [&] {
        const std::optional<QString> before = model_.appFocus();
        key(page->view(), Qt::Key_Down);
        const bool moved = model_.appFocus() != before || model_.orphanFocus().has_value();
        key(page->view(), Qt::Key_Up);
        return moved && model_.appFocus() == before ? QString() : QStringLiteral("the focus on the next app and back");
    });
    return true;
}

void Driver::trayActions() {
    const auto hidden = [this] {
        window_.hide();
        waitFor([this] { return !window_.isVisible(); }, 1000);
    };
    step(QStringLiteral("the tray's Open Quarle shows the window"), [&] {
        hidden();
        tray_.openAction()->trigger();
        return waitFor([this] { return window_.isVisible(); }, 2000) ? QString() : QStringLiteral("the window shown");
    });
    const QString clear = QStringLiteral("the tray's Clear Now asks in the window, Escape cancels");
    if (!tray_.clearAction()->isEnabled()) {
        skip(clear, QStringLiteral("nothing is ticked"));
    } else {
        step(clear, [&] {
            hidden();
            const QString cancelled = sheetCancelled([&] { tray_.clearAction()->trigger(); });
            return !cancelled.isEmpty() || window_.isVisible() ? cancelled : QStringLiteral("the window shown");
        });
    }
    if (model_.demo()) {
        skip(QStringLiteral("the tray's Scan"), QStringLiteral("the demonstration does not scan again"));
        return;
    }
    step(QStringLiteral("the tray's Scan scans again"), [this] {
        int started = 0;
        const auto counting = QObject::connect(&model_, &Model::scanningChanged, &window_, [&] { started += model_.scanning(); });
        tray_.scanAction()->trigger();
        const QString finished = waitFor([&] { return started > 0; }, 2000) ? scanFinished(30 * 60 * 1000)
                                                                            : QStringLiteral("a scan to start");
        QObject::disconnect(counting);
        return finished;
    });
}

void Driver::questions() {
    // Each question is opened as its button would open it, and cancelled with Escape.
    struct Question {
        QString name;
        std::function<void()> open;
        bool demoOnly;
    };
    const int days = model_.keepDays();
    const QList<Question> all{
        {QStringLiteral("\"Empty all\" asks, Escape cancels"), [this] { model_.emptyAll(false); }, false},
        {QStringLiteral("\"Empty now\" asks, Escape cancels"),
         [this] {
             for (const HistoryEntry& e : model_.history())
                 if (e.state == HistoryEntry::State::inTrash) return model_.emptyNow(e, false);
         },
         false},
        // Outside the demonstration a shorter keep period that asks nothing would take effect.
        {QStringLiteral("a shorter keep period asks, Escape cancels"), [this] { model_.setKeepDays(1, false); }, true},
    };
    for (const Question& q : all) {
        if (q.demoOnly && !model_.demo()) {
            skip(q.name, QStringLiteral("only with the demonstration"));
            continue;
        }
        model_.setPage(Page::history);
        const QList<HistoryEntry> before = model_.history();
        q.open();
        if (!waitFor([&] { return window_.modals()->askDialog() && window_.modals()->askDialog()->isVisible(); }, 2000)) {
            skip(q.name, QStringLiteral("nothing to ask about here"));
            if (model_.keepDays() != days) model_.setKeepDays(days, true);
            continue;
        }
        step(q.name, [&]() -> QString {
            key(window_.modals()->askDialog(), Qt::Key_Escape);
            if (!waitFor([&] { return !model_.ask() && !window_.modals()->askDialog(); }, 3000))
                return QStringLiteral("the question closed unanswered");
            settle(100);  // anything confirmed by mistake would land by now
            return model_.history() == before && model_.keepDays() == days && !model_.jobs()
                       ? QString() : QStringLiteral("nothing changed");
        });
    }
}

void Driver::palettes() {
    const Appearance before = model_.appearance();
    for (const auto& [appearance, name, dark] : {std::tuple{Appearance::night, "night", true}, {Appearance::paper, "paper", false}})
        step(QStringLiteral("the %1 palette").arg(QLatin1String(name)), [&, appearance = appearance, dark = dark, name = name] {
            model_.setAppearance(appearance);
            const bool applied = waitFor([&] { return (QApplication::palette().color(QPalette::Window).lightness() < 128) == dark; }, 2000);
            settle(50);
            return applied ? QString() : QStringLiteral("a %1 window").arg(dark ? "dark" : "light");
        });
    model_.setAppearance(before);
}

Report Driver::run() {
    step(QStringLiteral("the window shows"), [this] {
        window_.resize(Theme::windowWidth, Theme::windowHeight);
        window_.activateWindow();
        return waitFor([this] { return window_.isVisible() && window_.isActiveWindow(); }, 5000)
                   ? QString() : QStringLiteral("an active window");
    });
    if (window_.modals()->welcomeSheet() || model_.showWelcome())
        step(QStringLiteral("the welcome sheet shows at the first start, Escape closes it"), [this] {
            if (!waitFor([this] { return window_.modals()->welcomeSheet() && window_.modals()->welcomeSheet()->isVisible(); }, 3000))
                return QStringLiteral("the welcome sheet shown");
            key(window_.modals()->welcomeSheet(), Qt::Key_Escape);
            return waitFor([this] { return !window_.modals()->welcomeSheet() && !model_.showWelcome(); }, 3000)
                       ? QString() : QStringLiteral("the welcome sheet closed");
        });
    else
        skip(QStringLiteral("the welcome sheet"), QStringLiteral("Quarle has welcomed this user before"));
    step(QStringLiteral("the first scan"), [this] { return scanFinished(30 * 60 * 1000); });
    pages();
    cleanKeys();
    storageKeys();
    confirmation();
    questions();
    if (model_.demo())
        skip(QStringLiteral("Ctrl+R scans again"), QStringLiteral("the demonstration does not scan again"));
    else
        step(QStringLiteral("Ctrl+R scans again"), [this] {
            int started = 0;
            const auto counting = QObject::connect(&model_, &Model::scanningChanged, &window_, [&] { started += model_.scanning(); });
            key(&window_, Qt::Key_R, Qt::ControlModifier);
            const QString finished = waitFor([&] { return started > 0; }, 2000) ? scanFinished(30 * 60 * 1000)
                                                                                : QStringLiteral("a scan to start");
            QObject::disconnect(counting);
            return finished;
        });
    palettes();
    trayActions();
    report_.stalls = watchdog_.stop();
    report_.stallLimitMs = stallLimit.count();
    return report_;
}

}  // namespace

void run(MainWindow& window, Model& model, TrayIcon& tray, bool asJson) {
    QTimer::singleShot(0, &window, [&window, &model, &tray, asJson] {
        const Report report = Driver(window, model, tray).run();
        QTextStream out(stdout);
        if (asJson)
            out << json(report);
        else
            out << text(report);
        out.flush();
        QApplication::exit(exitStatus(report));
    });
}

}  // namespace SelfCheck
