// The window's speed, one figure per mode (bench/window-bench.sh runs them side by side):
//   window_bench first-paint   launch to the first painted window, demonstration (ms)
//   window_bench stall         the longest time the main thread did not answer while the home of
//                              QUARLE_ROOT is scanned with Clean open (ms), and how many such gaps > 50 ms
//   window_bench parts         opening Clean's row with the most parts, and the slowest and the median
//                              frame while paging through it (ms)
//   window_bench storage       stepping through Storage's columns with the map beside them on the home
//                              of QUARLE_ROOT, opening its largest folder listed on demand: the longest
//                              main-thread stall (ms), stalls > 50 ms, the slowest map layout and
//                              redraw (ms), the most entries in one column, and the peak memory (MB)

#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTimer>
#include <QTreeView>
#include <QFile>
#include <QListView>
#include <algorithm>
#include <cstdio>

#include "model/model.h"
#include "ui/pages/clean_page.h"
#include "ui/pages/storage_page.h"
#include "ui/widgets/column_browser.h"
#include "ui/widgets/space_map.h"
#include "ui/theme/theme.h"
#include "ui/widgets/finding_model.h"
#include "ui/window/main_window.h"

namespace {

QElapsedTimer launched;

// Counts the first paint of a widget.
class FirstPaint : public QObject {
public:
    qint64 at = -1;
    bool eventFilter(QObject* o, QEvent* e) override {
        if (e->type() == QEvent::Paint && at < 0) at = launched.elapsed();
        return QObject::eventFilter(o, e);
    }
};

void wait(const std::function<bool()>& done, int ms = 600000) {
    QElapsedTimer t;
    t.start();
    while (!done() && t.elapsed() < ms) QApplication::processEvents(QEventLoop::AllEvents, 5);
}

int firstPaint(int& argc, char** argv) {
    qputenv("QUARLE_DEMO", "1");
    QApplication app(argc, argv);
    Theme::rememberSystem();
    Model model;
    Theme::apply(model.appearance());
    MainWindow window(model);
    FirstPaint paint;
    window.page(Page::home)->installEventFilter(&paint);
    window.show();
    QTimer::singleShot(0, &model, [&] { model.start(); });
    wait([&] { return paint.at >= 0; }, 10000);
    std::printf("%lld\n", paint.at);
    return paint.at < 0;
}

// A timer asks to run every millisecond; the gaps between its runs are the main thread's stalls.
struct StallMeter {
    QElapsedTimer clock;
    QTimer tick;
    qint64 last = 0, longest = 0;
    int over = 0;
    std::function<QString()> where;  // for QUARLE_BENCH_VERBOSE: what was going on

    StallMeter() {
        tick.setInterval(1);
        QObject::connect(&tick, &QTimer::timeout, [this] {
            const qint64 now = clock.elapsed();
            longest = std::max(longest, now - last);
            over += now - last > 50;
            if (qEnvironmentVariableIsSet("QUARLE_BENCH_VERBOSE") && now - last > 50)
                std::fprintf(stderr, "stall of %lld ms %s\n", now - last, qPrintable(where ? where() : QString()));
            last = now;
        });
    }
    void start() {
        clock.start();
        tick.start();
    }
    // Time the bench spent on purpose (a timed redraw) is not a stall.
    void skip() { last = clock.elapsed(); }
};

int stall(int& argc, char** argv) {
    QApplication app(argc, argv);
    Theme::rememberSystem();
    Model model;
    Theme::apply(model.appearance());
    MainWindow window(model);
    model.setPage(Page::clean);
    window.show();
    wait([] { return false; }, 300);  // the window's own first paint is another figure
    StallMeter meter;
    meter.where = [&] { return QStringLiteral("at %1 ms").arg(meter.clock.elapsed()); };
    meter.start();
    model.start();
    wait([&] { return model.scan().has_value() && !model.scanning(); });
    wait([] { return false; }, 500);  // the result lands and the pages redraw
    std::printf("%lld %d\n", meter.longest, meter.over);
    return 0;
}

int parts(int& argc, char** argv) {
    QApplication app(argc, argv);
    Theme::rememberSystem();
    Model model;
    Theme::apply(model.appearance());
    MainWindow window(model);
    model.setPage(Page::clean);
    window.show();
    model.start();
    wait([&] { return model.scan().has_value() && !model.scanning(); });
    wait([] { return false; }, 300);
    auto* page = static_cast<CleanPage*>(window.page(Page::clean));
    QTreeView* view = page->view();
    FindingModel* rows = page->rows();
    QModelIndex widest;
    for (int g = 0; g < rows->rowCount(); ++g)
        for (int f = 0; f < rows->rowCount(rows->index(g, 0)); ++f) {
            const QModelIndex i = rows->index(f, 0, rows->index(g, 0));
            if (!widest.isValid() || rows->rowCount(i) > rows->rowCount(widest)) widest = i;
        }
    QElapsedTimer t;
    t.start();
    view->expand(widest);
    view->scrollTo(widest, QAbstractItemView::PositionAtTop);
    view->viewport()->repaint();
    const qint64 open = t.elapsed();
    QList<qint64> frames;
    QScrollBar* bar = view->verticalScrollBar();
    while (bar->value() < bar->maximum() && frames.size() < 2000) {
        QElapsedTimer f;
        f.start();
        bar->setValue(bar->value() + bar->pageStep());
        view->viewport()->repaint();
        frames << f.nsecsElapsed() / 1000;
    }
    std::sort(frames.begin(), frames.end());
    std::printf("%d %lld %.2f %.2f\n", rows->rowCount(widest), open, frames.isEmpty() ? 0.0 : frames.last() / 1000.0,
                frames.isEmpty() ? 0.0 : frames[frames.size() / 2] / 1000.0);
    return 0;
}

// The peak resident memory of this process, in MB.
long peakMegabytes() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:")) return line.mid(6).trimmed().split(' ').value(0).toLong() / 1024;
    return -1;
}

int storage(int& argc, char** argv) {
    QApplication app(argc, argv);
    Theme::rememberSystem();
    Model model;
    Theme::apply(model.appearance());
    model.setStorageMode(StorageMode::both);
    MainWindow window(model);
    window.show();
    model.start();
    wait([&] { return model.scan().has_value() && !model.scanning(); });
    model.setPage(Page::space);
    wait([] { return false; }, 500);
    auto* page = static_cast<StoragePage*>(window.page(Page::space));
    SpaceMap* map = page->map();

    // The steps a person takes: into each folder of the home, down its list, in and out again;
    // then the folder the scan summed as a whole with the most entries, listed on demand.
    QList<std::function<void()>> steps;
    const QList<SpaceNode> top = model.scan()->home.kids;
    for (const SpaceNode& folder : top) {
        if (!folder.isDir) continue;
        steps << [&model, folder] { model.open(folder, 0, true); };
        for (int i = 0; i < 3; ++i) {
            steps << [&model] { model.spaceIn(); };
            for (int k = 0; k < 4; ++k) steps << [&model] { model.spaceStep(1); };
        }
        steps << [&model] { model.spaceOut(); } << [&model] { model.spaceOut(); } << [&model] { model.spaceGoBack(); };
    }
    const QString flat = qEnvironmentVariable("QUARLE_BENCH_WIDE");
    if (!flat.isEmpty()) {
        steps << [&model, flat] { model.spaceReveal(flat); };
        steps << [&model] { wait([&] { return !model.columnLoading(); }); };
        steps << [&model] { model.spaceIn(); };
        for (int k = 0; k < 20; ++k) steps << [&model] { model.spaceStep(1); };
        steps << [&model] { model.spaceOut(); };
    }

    int at = 0;
    StallMeter meter;
    meter.where = [&] { return QStringLiteral("at step %1").arg(at); };
    double layout = 0, redraw = 0;
    int widest = 0;
    meter.start();
    for (const auto& step : steps) {
        ++at;
        if (qEnvironmentVariableIsSet("QUARLE_BENCH_VERBOSE") && model.spaceSelection())
            std::fprintf(stderr, "step %d: %s\n", at, qPrintable(model.spaceSelection()->path));
        step();
        wait([] { return false; }, 40);  // the page folds the change, repaints, the map follows
        // The map once more, timed on its own: laying out the slices, then a full redraw.
        if (const SpaceNode* folder = &map->folder(); !folder->path.isEmpty()) {
            const SpaceNode copy = *folder;
            QElapsedTimer t;
            t.start();
            map->setFolder(SpaceNode{});
            map->setFolder(copy);
            layout = std::max(layout, t.nsecsElapsed() / 1e6);
            t.restart();
            map->repaint();
            redraw = std::max(redraw, t.nsecsElapsed() / 1e6);
        }
        for (int c = 0; c < page->browser()->columnCount(); ++c)
            widest = std::max(widest, page->browser()->column(c)->model()->rowCount());
        meter.skip();  // the timed redraw above is not a stall of the page's own
    }
    std::printf("%lld %d %.2f %.2f %d %ld\n", meter.longest, meter.over, layout, redraw, widest, peakMegabytes());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    launched.start();
    const QByteArray mode = argc > 1 ? QByteArray(argv[1]) : QByteArray();
    if (mode == "first-paint") return firstPaint(argc, argv);
    if (mode == "stall") return stall(argc, argv);
    if (mode == "parts") return parts(argc, argv);
    if (mode == "storage") return storage(argc, argv);
    std::fprintf(stderr, "usage: window_bench first-paint|stall|parts|storage\n");
    return 2;
}
