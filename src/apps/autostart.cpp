#include "apps/autostart.h"

#include <QMap>

#include "apps/sorted_entries.h"
#include "platform/xdg.h"

namespace {

// Every "*.desktop" of a folder (links followed when read), by file name.
QMap<QString, QString> entryFiles(const QString& folder) {
    QMap<QString, QString> out;
    for (const Walker::Entry& e : sortedEntries(folder))
        if (!e.isDir && e.name.endsWith(QLatin1String(".desktop"))) out.insert(e.name, folder + QLatin1Char('/') + e.name);
    return out;
}

bool isApplication(const DesktopEntry& e) { return e.type.isEmpty() || e.type == QLatin1String("Application"); }

}  // namespace

namespace Autostart {

bool Found::enabled() const { return !entry.hidden && entry.autostartEnabled.value_or(true); }

QString Found::name() const { return entry.name.isEmpty() && replaced ? replaced->name : entry.name; }

QStringList Found::exec() const { return entry.exec.isEmpty() && replaced ? replaced->exec : entry.exec; }

QString Found::tryExec() const { return entry.tryExec.isEmpty() && replaced ? replaced->tryExec : entry.tryExec; }

QString Found::flatpak() const { return entry.flatpak.isEmpty() && replaced ? replaced->flatpak : entry.flatpak; }

QString userFolder() { return Xdg::configHome() + QStringLiteral("/autostart"); }

QList<Found> list(const SystemFolders& folders) {
    const QMap<QString, QString> mine = entryFiles(userFolder());
    const QMap<QString, QString> everyone = entryFiles(folders.autostart);
    QMap<QString, Found> found;
    for (auto it = everyone.cbegin(); it != everyone.cend(); ++it) {
        if (mine.contains(it.key())) continue;
        if (auto e = DesktopEntry::read(it.value()); e && isApplication(*e)) found.insert(it.key(), Found{*e, true, {}});
    }
    for (auto it = mine.cbegin(); it != mine.cend(); ++it) {
        auto e = DesktopEntry::read(it.value());
        if (!e) continue;
        std::optional<DesktopEntry> replaced;
        if (const auto system = everyone.constFind(it.key()); system != everyone.cend())
            replaced = DesktopEntry::read(*system);
        if (isApplication(*e)) found.insert(it.key(), Found{*e, false, replaced});
    }
    return found.values();
}

}  // namespace Autostart
