#include "ui/hooks/shots.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPixmap>
#include <QTextStream>
#include <QTimer>

#include "model/model.h"
#include "ui/theme/theme.h"
#include "ui/window/main_window.h"
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
        const Appearance before = model.appearance();
        int failed = 0;
        for (const auto& [appearance, name] : {std::pair{Appearance::night, "night"}, {Appearance::paper, "paper"}}) {
            Theme::apply(appearance);
            for (int i = 0; i < pageCount; ++i) {
                model.setPage(Page(i));
                settle(120);
                const QString file = QDir(dir).filePath(pageSlug(Page(i)) + QLatin1Char('-') + QLatin1String(name) + ".png");
                if (!window.grab().save(file)) {
                    err << "quarle: cannot write " << file << "\n";
                    ++failed;
                }
            }
        }
        Theme::apply(before);
        QApplication::exit(failed ? 1 : 0);
    });
}

}  // namespace Shots
