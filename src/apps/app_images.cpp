#include "apps/app_images.h"

#include <QRegularExpression>

#include "apps/sorted_entries.h"
#include "core/home.h"
#include "core/paths.h"
#include "platform/small_file.h"
#include "platform/xdg.h"

namespace {

// A piece of a file name that is no longer part of the app's name: a version ("2.3.1", "v2"), a
// machine architecture, or the word for the platform.
bool endsTheName(const QString& piece) {
    static const QRegularExpression version(QStringLiteral("^[vV]?[0-9]"));
    static const QStringList words{QStringLiteral("x86"), QStringLiteral("x86_64"), QStringLiteral("amd64"),
                                   QStringLiteral("aarch64"), QStringLiteral("arm64"), QStringLiteral("armhf"),
                                   QStringLiteral("i386"), QStringLiteral("i686"), QStringLiteral("linux"),
                                   QStringLiteral("linux64"), QStringLiteral("x64")};
    return version.match(piece).hasMatch() || words.contains(piece.toLower());
}

}  // namespace

namespace AppImages {

QStringList folders() { return {Home::at(QStringLiteral("Applications")), Home::at(QStringLiteral(".local/bin"))}; }

bool hasMagic(const QByteArray& head) {
    return head.size() >= 11 && head.startsWith("\x7f" "ELF") && head[8] == 'A' && head[9] == 'I' &&
           (head[10] == 1 || head[10] == 2);
}

bool isAppImage(const QString& path, const QString& fileName) {
    if (fileName.endsWith(QLatin1String(".appimage"), Qt::CaseInsensitive)) return true;
    const auto head = SmallFile::head(path, 16);
    return head && hasMagic(*head);
}

QString nameFromFile(const QString& fileName) {
    QString stem = fileName;
    if (stem.endsWith(QLatin1String(".appimage"), Qt::CaseInsensitive)) stem.chop(9);
    // Pieces are separated by "-", "_" or blanks; the name ends before the first piece that is
    // a version or an architecture ("x86_64" is met as "x86").
    static const QRegularExpression separator(QStringLiteral("[-_ ]"));
    qsizetype start = 0;
    while (start < stem.size()) {
        qsizetype end = stem.indexOf(separator, start);
        if (end < 0) end = stem.size();
        if (start > 0 && endsTheName(stem.mid(start, end - start))) {
            const QString name = stem.left(start - 1);
            return name.isEmpty() ? stem : name;
        }
        start = end + 1;
    }
    return stem.isEmpty() ? fileName : stem;
}

QString idFromEntry(const QString& desktopID) {
    static const QRegularExpression integration(QStringLiteral("^appimagekit_[0-9a-fA-F]+-"));
    QString id = desktopID;
    id.remove(integration);
    return LinuxApps::isAppID(id) ? id : QString();
}

QList<DesktopEntry> userEntries() {
    const QString folder = Xdg::dataHome() + QStringLiteral("/applications");
    QList<DesktopEntry> out;
    for (const Walker::Entry& e : sortedEntries(folder))
        if (!e.isDir && e.name.endsWith(QLatin1String(".desktop")))
            if (auto entry = DesktopEntry::read(folder + QLatin1Char('/') + e.name)) out.append(std::move(*entry));
    return out;
}

QList<DesktopEntry> entriesFor(const QString& path, const QList<DesktopEntry>& entries) {
    QList<DesktopEntry> out;
    for (const DesktopEntry& e : entries)
        if (e.program() == path || e.tryExec == path) out.append(e);
    return out;
}

LinuxApp read(const QString& path, const QList<DesktopEntry>& entries) {
    LinuxApp app;
    app.origin = LinuxApp::Origin::appImage;
    app.path = path;
    const QString fromFile = nameFromFile(Paths::lastComponent(path));
    app.name = fromFile;
    const QList<DesktopEntry> own = entriesFor(path, entries);
    if (!own.isEmpty()) {
        const DesktopEntry& e = own.first();
        if (!e.name.isEmpty()) app.name = e.name;
        app.id = idFromEntry(e.id);
    }
    app.developer = LinuxApps::vendorOf(app.id);
    // Without an app id only names can match, the app's own first.
    if (app.id.isEmpty()) app.otherNames.append({app.name, QStringLiteral("Named after the app")});
    if (fromFile != app.name) app.otherNames.append({fromFile, QStringLiteral("Named after its file (%1)").arg(fromFile)});
    if (!own.isEmpty())
        if (auto name = LinuxApps::windowClass(own.first().wmClass)) app.otherNames.append(*name);
    return app;
}

QList<LinuxApp> list() {
    const QList<DesktopEntry> entries = userEntries();
    QList<LinuxApp> apps;
    for (const QString& folder : folders())
        for (const Walker::Entry& e : sortedEntries(folder)) {
            const QString path = folder + QLatin1Char('/') + e.name;
            if (e.isFile && isAppImage(path, e.name)) apps.append(read(path, entries));
        }
    return apps;
}

}  // namespace AppImages
