#include "scan/extras.h"

#include <deque>
#include <sys/stat.h>

#include "core/fmt.h"
#include "core/home.h"
#include "core/paths.h"
#include "measure/walker.h"
#include "platform/words.h"
#include "scan/catalogue.h"
#include "scan/rows.h"

namespace {

constexpr int projectLevels = 5;  // folders searched below a code root
constexpr qint64 day = 86400;

bool exists(const QString& path) {
    struct stat st;
    return ::lstat(Paths::toBytes(path).constData(), &st) == 0;
}

QString extensionOf(const QString& name) {
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? QString() : name.mid(dot + 1).toLower();
}

// The bytes of an entry of a listing: a file's own blocks, a folder walked.
WalkResult sizeOf(const QString& folder, const Walker::Entry& e) {
    if (e.isFile) return {e.allocated, 1, 0, e.modified};
    if (e.isDir) return Walker::size(folder + QLatin1Char('/') + e.name, true);
    return {};
}

QList<Walker::Entry> listing(const QString& folder) {
    QList<Walker::Entry> entries;
    Walker::list(folder, std::nullopt, [&](const Walker::Entry& e) { entries.append(e); });
    return entries;
}


}  // namespace

namespace Scanner {

QStringList codeRoots() {
    QStringList found;
    for (const QString& relative : Catalogue::codeRoots()) {
        const QString path = Home::at(relative);
        if (exists(path)) found.append(path);
    }
    return found;
}

std::optional<Finding> idleNodeModules(const SpaceNode& home, const Cancelled& cancelled, int days,
                                       const QDateTime& now) {
    Finding f = extraRow(QStringLiteral("nodemodules"));
    const QDateTime cutoff = now.addSecs(-qint64(days) * day);
    QStringList rootsWithProjects;
    for (const QString& root : codeRoots()) {
        const std::optional<qint32> device = Walker::device(root);
        std::deque<std::pair<QString, int>> work{{root, 0}};
        const qsizetype before = f.parts.size();
        while (!work.empty()) {
            if (cancelled && cancelled()) return std::nullopt;
            const auto [folder, level] = work.front();
            work.pop_front();
            bool project = false;
            std::optional<QDateTime> newest;
            Walker::list(folder, device, [&](const Walker::Entry& e) {
                if (e.name == QLatin1String("node_modules")) {
                    project = true;
                    return;
                }
                if (e.modified && (!newest || *e.modified > *newest)) newest = e.modified;
                if (e.isDir && level + 1 < projectLevels && !e.name.startsWith(QLatin1Char('.')) &&
                    e.name != QLatin1String("build") && e.name != QLatin1String("Pods"))
                    work.emplace_back(folder + QLatin1Char('/') + e.name, level + 1);
            });
            // A project with nothing but node_modules has had nothing touched either.
            if (!project || (newest && *newest >= cutoff)) continue;
            const QString modules = folder + QStringLiteral("/node_modules");
            const SpaceNode* node = home.find(modules);
            const WalkResult size = node ? WalkResult{node->bytes, 0, node->note.isEmpty() ? 0 : 1, {}}
                                         : Walker::size(modules, true, cancelled);
            // A node_modules of 0 bytes frees nothing: not offered.
            if (size.bytes <= 0) continue;
            f.parts.append({Fmt::path(folder), modules, size.bytes, Rows::agoNote(QStringLiteral("changed"), newest, now),
                            newest});
            f.partial = f.partial || size.denied > 0;
        }
        if (f.parts.size() > before) rootsWithProjects.append(root);
    }
    if (rootsWithProjects.isEmpty()) return std::nullopt;
    QString place = Fmt::path(rootsWithProjects.first());
    if (rootsWithProjects.size() > 1) place += QStringLiteral(" and %1 more").arg(rootsWithProjects.size() - 1);
    return Rows::finish(std::move(f), place + QStringLiteral(" · "), QStringLiteral("folder"));
}

QStringList applicationFolders() {
    if (Home::isFake()) return {Home::at(QStringLiteral("Applications"))};
    return {QStringLiteral("/Applications"), Home::at(QStringLiteral("Applications"))};
}

QStringList installedAppNames(const QStringList& folders) {
    QStringList names;
    for (const QString& folder : folders)
        for (const Walker::Entry& e : listing(folder))
            if (e.isDir && e.name.endsWith(QLatin1String(".app")) && e.name.size() > 4)
                names.append(e.name.chopped(4));
    return names;
}

std::optional<QString> installedApp(const QString& installer, const QStringList& names) {
    // The installer's name begins with the app's whole name, word for word: "Arc" is not "Archive".
    const qsizetype dot = installer.lastIndexOf(QLatin1Char('.'));
    const QStringList parts = Words::of(dot > 0 ? installer.left(dot) : installer);
    QSet<QString> beginnings;
    QString joined;
    for (const QString& w : parts) beginnings.insert(joined += w);
    std::optional<QString> best;
    for (const QString& name : names) {
        const QString key = Words::squeezed(name);
        if (!key.isEmpty() && beginnings.contains(key) && (!best || key.size() > Words::squeezed(*best).size())) best = name;
    }
    return best;
}

std::optional<Finding> installers(const QString& home, const QStringList& installed, const QDateTime& now) {
    Finding f = extraRow(QStringLiteral("installers"));
    const QString downloads = home + QStringLiteral("/Downloads");
    for (const Walker::Entry& e : listing(downloads)) {
        if (!Catalogue::installerExtensions().contains(extensionOf(e.name))) continue;
        const WalkResult size = sizeOf(downloads, e);
        QString note = Rows::agoNote(QStringLiteral("downloaded"), e.modified, now);
        if (const auto app = installedApp(e.name, installed))
            note += (note.isEmpty() ? QString() : QStringLiteral(" · ")) + *app + QStringLiteral(" is installed");
        f.parts.append({e.name, downloads + QLatin1Char('/') + e.name, size.bytes, note, e.modified});
        f.partial = f.partial || size.denied > 0;
    }
    return Rows::finish(std::move(f), Fmt::path(downloads) + QStringLiteral(" · "), QStringLiteral("file"));
}

std::optional<Finding> unfinishedDownloads(const QString& home, const QDateTime& now) {
    Finding f = extraRow(QStringLiteral("unfinished"));
    const QString downloads = home + QStringLiteral("/Downloads");
    for (const Walker::Entry& e : listing(downloads)) {
        if (!Catalogue::unfinishedExtensions().contains(extensionOf(e.name))) continue;
        // Still downloading, perhaps; and one without a date cannot be told apart.
        if (!e.modified || e.modified->secsTo(now) <= day) continue;
        const WalkResult size = sizeOf(downloads, e);
        f.parts.append({e.name, downloads + QLatin1Char('/') + e.name, size.bytes,
                        Rows::agoNote(QStringLiteral("stopped"), e.modified, now), e.modified});
        f.partial = f.partial || size.denied > 0;
    }
    return Rows::finish(std::move(f), Fmt::path(downloads) + QStringLiteral(" · "), QStringLiteral("file"));
}

std::optional<Finding> macOSInstallers(const QString& applications, const QDateTime& now) {
    Finding f = extraRow(QStringLiteral("macosinstallers"));
    for (const Walker::Entry& e : listing(applications)) {
        if (!e.name.startsWith(QLatin1String("Install macOS")) || !e.name.endsWith(QLatin1String(".app"))) continue;
        const WalkResult size = sizeOf(applications, e);
        f.parts.append({e.name, applications + QLatin1Char('/') + e.name, size.bytes,
                        Rows::agoNote(QStringLiteral("downloaded"), e.modified, now), e.modified});
        f.partial = f.partial || size.denied > 0;
    }
    return Rows::finish(std::move(f), Fmt::path(applications) + QStringLiteral(" · "), QStringLiteral("installer"));
}

}  // namespace Scanner
