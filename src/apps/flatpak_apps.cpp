#include "apps/flatpak_apps.h"

#include <sys/stat.h>

#include <QXmlStreamReader>
#include <algorithm>

#include "core/paths.h"
#include "measure/walker.h"
#include "platform/desktop_entry.h"
#include "platform/known_apps.h"
#include "platform/key_file.h"
#include "platform/small_file.h"
#include "platform/xdg.h"

namespace {

bool isFolder(const QString& path) {
    struct stat st;
    return ::stat(Paths::toBytes(path).constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

QString deployment(const QString& installation, const QString& id) {
    return installation + QStringLiteral("/app/") + id + QStringLiteral("/current/active");
}

// The app's own desktop entry: the exported one (what the menu shows), else the one in its files.
std::optional<DesktopEntry> desktopEntryOf(const QString& active, const QString& id) {
    for (const char* folder : {"/export/share/applications/", "/files/share/applications/"})
        if (auto e = DesktopEntry::read(active + QLatin1String(folder) + id + QStringLiteral(".desktop"))) return e;
    return std::nullopt;
}

QString developerOf(const QString& active, const QString& id) {
    for (const QString& file : {QStringLiteral("/files/share/metainfo/%1.metainfo.xml"),
                                QStringLiteral("/files/share/metainfo/%1.appdata.xml"),
                                QStringLiteral("/files/share/appdata/%1.appdata.xml")}) {
        if (const auto xml = SmallFile::read(active + file.arg(id))) {
            const QString developer = FlatpakApps::appStreamDeveloper(*xml);
            if (!developer.isEmpty()) return developer;
        }
    }
    return LinuxApps::vendorOf(id);
}

bool untranslated(const QXmlStreamReader& xml) {
    return !xml.attributes().hasAttribute(QStringLiteral("xml:lang")) &&
           !xml.attributes().hasAttribute(QStringLiteral("http://www.w3.org/XML/1998/namespace"),
                                          QStringLiteral("lang"));
}

}  // namespace

namespace FlatpakApps {

QString userInstallation() { return Xdg::dataHome() + QStringLiteral("/flatpak"); }

QStringList deployed(const QString& installation) {
    QStringList ids;
    Walker::list(installation + QStringLiteral("/app"), std::nullopt, [&](const Walker::Entry& e) {
        if (e.isDir && !e.name.startsWith(QLatin1Char('.')) && isFolder(deployment(installation, e.name)))
            ids.append(e.name);
    });
    std::sort(ids.begin(), ids.end());
    return ids;
}

QString appStreamDeveloper(const QByteArray& data) {
    QXmlStreamReader xml(data);
    QString developerName, legacyName;
    QStringList open;  // names of the elements we are in
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            const QString element = xml.name().toString();
            // Only the component's own developer: nested components (addons) and releases have theirs.
            const bool inComponent = open.size() == 1 && open[0] == QLatin1String("component");
            const bool inDeveloper = open.size() == 2 && open[1] == QLatin1String("developer");
            if (inComponent && element == QLatin1String("developer_name") && untranslated(xml) && legacyName.isEmpty())
                legacyName = xml.readElementText().simplified();
            else if (inDeveloper && element == QLatin1String("name") && untranslated(xml) && developerName.isEmpty())
                developerName = xml.readElementText().simplified();
            else
                open.append(element);
        } else if (token == QXmlStreamReader::EndElement && !open.isEmpty()) {
            open.removeLast();
        }
    }
    if (xml.hasError()) return {};
    return developerName.isEmpty() ? legacyName : developerName;
}

LinuxApp read(const QString& installation, const QString& id, LinuxApp::Origin origin) {
    const QString active = deployment(installation, id);
    LinuxApp app;
    app.origin = origin;
    app.path = installation + QStringLiteral("/app/") + id;
    app.id = id;
    app.name = id;
    const auto entry = desktopEntryOf(active, id);
    if (entry && !entry->name.isEmpty()) app.name = entry->name;
    app.developer = developerOf(active, id);

    const auto metadata = KeyFile::read(active + QStringLiteral("/metadata"), KeyFile::Syntax::desktopEntry);
    if (metadata)
        if (const auto command = metadata->value(QStringLiteral("Application"), QStringLiteral("command")))
            if (auto name = LinuxApps::programName(*command)) app.otherNames.append(*name);
    if (entry)
        if (auto name = LinuxApps::windowClass(entry->wmClass)) app.otherNames.append(*name);
    return app;
}

QList<LinuxApp> list(const SystemFolders& folders) {
    QList<LinuxApp> apps;
    const std::pair<QString, LinuxApp::Origin> installations[] = {{userInstallation(), LinuxApp::Origin::userFlatpak},
                                                                  {folders.flatpak, LinuxApp::Origin::systemFlatpak}};
    for (const auto& [installation, origin] : installations)
        for (const QString& id : deployed(installation)) apps.append(read(installation, id, origin));
    return apps;
}

QSet<QString> installedIDs(const SystemFolders& folders) {
    QSet<QString> ids;
    for (const QString& installation : {userInstallation(), folders.flatpak})
        for (const QString& id : deployed(installation)) ids.insert(id);
    return ids;
}

std::function<bool(const QString&)> stillInstalled(const SystemFolders& folders) {
    return [deployed = installedIDs(folders), knows = KnownApps::lookup()](const QString& id) {
        return deployed.contains(id) || knows(id);
    };
}

}  // namespace FlatpakApps
