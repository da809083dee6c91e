#include "platform/desktop_entry.h"

#include "core/paths.h"
#include "platform/command_line.h"
#include "platform/key_file.h"

QString DesktopEntry::program() const { return CommandLine::program(exec); }

namespace {

std::optional<DesktopEntry> fromFile(const std::optional<KeyFile>& file, const QString& path) {
    static const QString group = QStringLiteral("Desktop Entry");
    if (!file || !file->hasGroup(group)) return std::nullopt;
    const auto text = [&](const char* key) { return file->value(group, QLatin1String(key)).value_or(QString()); };

    DesktopEntry e;
    e.path = path;
    e.id = Paths::lastComponent(path);
    if (e.id.endsWith(QLatin1String(".desktop"))) e.id.chop(8);
    e.type = text("Type");
    e.name = text("Name");
    if (const QString exec = text("Exec"); !exec.isEmpty()) {
        const auto args = CommandLine::split(exec);
        if (!args) return std::nullopt;
        e.exec = *args;
    }
    e.tryExec = text("TryExec");
    e.icon = text("Icon");
    e.wmClass = text("StartupWMClass");
    e.flatpak = text("X-Flatpak");
    e.hidden = file->flag(group, QStringLiteral("Hidden")).value_or(false);
    e.autostartEnabled = file->flag(group, QStringLiteral("X-GNOME-Autostart-enabled"));
    return e;
}

}  // namespace

std::optional<DesktopEntry> DesktopEntry::read(const QString& path) {
    return fromFile(KeyFile::read(path, KeyFile::Syntax::desktopEntry), path);
}

std::optional<DesktopEntry> DesktopEntry::parse(const QByteArray& data, const QString& path) {
    return fromFile(KeyFile::parse(data, KeyFile::Syntax::desktopEntry), path);
}
