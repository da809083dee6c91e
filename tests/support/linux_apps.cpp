#include "support/linux_apps.h"

#include <sys/stat.h>

#include <QFile>

#include "core/paths.h"
#include "support/files.h"

namespace LinuxFixtures {

ScopedEnv::ScopedEnv(const char* name, const QByteArray& value)
    : name_(name), had_(qEnvironmentVariableIsSet(name)), old_(qgetenv(name)) {
    qputenv(name, value);
}

ScopedEnv::~ScopedEnv() {
    if (had_)
        qputenv(name_, old_);
    else
        qunsetenv(name_);
}

QString flatpak(const QString& installation, const Flatpak& app) {
    const QString folder = installation + "/app/" + app.id;
    const QString commit = folder + "/x86_64/stable/0f1e2d3c4b5a69788796a5b4c3d2e1f00f1e2d3c4b5a69788796a5b4c3d2e1f0";
    QByteArray metadata = "[Application]\nname=" + app.id.toUtf8() + "\nruntime=org.freedesktop.Platform/x86_64/23.08\n";
    if (!app.command.isEmpty()) metadata += "command=" + app.command.toUtf8() + "\n";
    metadata += "\n[Context]\nshared=network;ipc;\n";
    text(commit + "/metadata", metadata);
    Files::makeDirs(commit + "/files/bin");
    Files::write(commit + "/files/bin/" + (app.command.isEmpty() ? QString("main") : app.command), app.bytes);
    text(commit + "/deploy", "binary deploy data");
    if (!app.name.isEmpty()) {
        QStringList lines{"Type=Application", "Name=" + app.name,
                          "Exec=/usr/bin/flatpak run --branch=stable --arch=x86_64 --command=" + app.command + " " + app.id,
                          "Icon=" + app.id, "X-Flatpak=" + app.id};
        if (!app.wmClass.isEmpty()) lines.append("StartupWMClass=" + app.wmClass);
        desktopEntry(commit + "/export/share/applications/" + app.id + ".desktop", lines);
    }
    if (!app.developer.isEmpty())
        text(commit + "/files/share/metainfo/" + app.id + ".metainfo.xml",
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<component type=\"desktop-application\">\n  <id>" +
                 app.id.toUtf8() + "</id>\n  <developer id=\"x\">\n    <name>" + app.developer.toUtf8() +
                 "</name>\n    <name xml:lang=\"de\">Anders</name>\n  </developer>\n</component>\n");
    Files::symlink(Paths::lastComponent(commit), folder + "/x86_64/stable/active");
    Files::symlink("x86_64/stable", folder + "/current");
    return folder;
}

QString elf(const QString& path, int appImageType, qint64 bytes) {
    QByteArray head("\x7f" "ELF\x02\x01\x01\x00", 8);
    head += appImageType ? QByteArray("AI") + char(appImageType) : QByteArray(3, '\0');
    head += QByteArray(int(bytes - head.size()), 'e');
    return text(path, head);
}

QString text(const QString& path, const QByteArray& data) {
    Files::makeDirs(Paths::parentOf(path));
    Files::writeText(path, data);
    return path;
}

QString desktopEntry(const QString& path, const QStringList& lines) {
    return text(path, "[Desktop Entry]\n" + lines.join('\n').toUtf8() + "\n");
}

QString script(const QString& folder, const QString& name, const QByteArray& body) {
    const QString path = text(folder + "/" + name, "#!/bin/sh\n" + body);
    ::chmod(Paths::toBytes(path).constData(), 0755);
    return path;
}

QByteArray contents(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

}  // namespace LinuxFixtures
