#include "ui/widgets/file_manager.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QUrl>

#include "core/paths.h"

namespace FileManager {
namespace {

void openFolder(const QString& path) {
    // QDesktopServices hands the folder to xdg-open as a detached process: it does not wait for it.
    QDesktopServices::openUrl(QUrl::fromLocalFile(Paths::parentOf(path)));
}

}  // namespace

void show(const QString& path) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolder(path);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
                                                       QStringLiteral("/org/freedesktop/FileManager1"),
                                                       QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(path).toString()} << QString();
    // Asynchronous: the answer, or the bus saying no one provides the service, comes back later.
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, 5000));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, path] {
        if (watcher->isError()) openFolder(path);
        watcher->deleteLater();
    });
}

}  // namespace FileManager
