#include "ui/window/application.h"

#include <QApplication>
#include <QDirIterator>
#include <QIcon>
#include <QTimer>

#include "model/model.h"
#include "ui/hooks/self_check.h"
#include "ui/hooks/shots.h"
#include "ui/theme/theme.h"
#include "ui/tray/tray_icon.h"
#include "ui/window/main_window.h"

namespace Ui {

bool hasDisplay() {
    if (!qEnvironmentVariableIsEmpty("QUARLE_SHOT") || !qEnvironmentVariableIsEmpty("QUARLE_SELFTEST")) return true;
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (!platform.isEmpty())
        return !platform.startsWith("offscreen") && !platform.startsWith("minimal");
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") || !qEnvironmentVariableIsEmpty("DISPLAY");
}

QIcon icon() {
    // The installed theme's icon when there is one, else the sizes built into the program.
    QIcon builtIn;
    QDirIterator sizes(QStringLiteral(":/icons/hicolor"), {QStringLiteral("quarle.png")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (sizes.hasNext()) builtIn.addFile(sizes.next());
    return QIcon::fromTheme(QStringLiteral("quarle"), builtIn);
}

int run(int& argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quarle"));
    QApplication::setApplicationDisplayName(QStringLiteral("Quarle"));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.quarle.Quarle"));
    QApplication::setWindowIcon(icon());
    Theme::rememberSystem();

    // The model reads the preferences; the appearance and the tray state apply before the window
    // first shows, and the scan starts after.
    Model model;
    Theme::apply(model.appearance());
    MainWindow window(model);
    TrayIcon tray(model);
    model.applyMenuBar = [&tray](bool show) { tray.apply(show); };
    tray.apply(model.showMenuBar());
    model.openWindow = [&window] {
        window.showNormal();
        window.raise();
        window.activateWindow();
    };
    QObject::connect(&app, &QGuiApplication::applicationStateChanged, &model, [&model](Qt::ApplicationState s) {
        if (s == Qt::ApplicationActive) model.recheckAccess();
    });

    const QString shots = qEnvironmentVariable("QUARLE_SHOT");
    window.show();
    QTimer::singleShot(0, &model, [&model] { model.start(); });
    if (!shots.isEmpty())
        Shots::take(window, model, shots);
    else if (!qEnvironmentVariableIsEmpty("QUARLE_SELFTEST"))
        SelfCheck::run(window, model, tray, QApplication::arguments().contains(QStringLiteral("--json")));
    const int status = app.exec();
    window.hide();  // the model may still wait for work in flight; the window does not linger
    return status;
}

}  // namespace Ui
