#include "scan/system_data.h"

#include <algorithm>

#include "core/checked.h"
#include "core/paths.h"
#include "platform/user_dirs.h"
#include "scan/catalogue.h"
#include "scan/scanner.h"

namespace {

const QString mobileBackups = QStringLiteral("Library/Application Support/MobileSync/Backup");
const QString dockerContainer = QStringLiteral("Library/Containers/com.docker.docker");

qint64 nodeBytes(const SpaceNode& home, const QString& relative) {
    return SystemData::bytesAt(home, Catalogue::at(relative));
}

qint64 sumAt(const SpaceNode& home, const QStringList& relatives) {
    qint64 sum = 0;
    for (const QString& r : relatives) sum = Checked::add(sum, nodeBytes(home, r));
    return sum;
}

qint64 findingBytes(const QList<Finding>& findings, const QString& id) {
    for (const Finding& f : findings)
        if (f.id == id) return f.bytes;
    return 0;
}

using SystemData::atLeastZero;

QStringList inHome(const QStringList& relatives) {
    QStringList out;
    for (const QString& r : relatives) out.append(Catalogue::at(r));
    return out;
}

// The home folders of the slices other than Developer and Trash: the macOS names, or on a Linux
// home the XDG user folders (localised names, Videos standing in for Movies).
struct SliceFolders {
    QStringList photos, apps, documents, downloads, media, mail;
};

SliceFolders sliceFolders(const ScanData& data) {
    if (!data.linuxSystem) {
        return {inHome({QStringLiteral("Pictures")}), inHome({QStringLiteral("Applications")}),
                inHome({QStringLiteral("Documents"), QStringLiteral("Desktop")}), inHome({QStringLiteral("Downloads")}),
                inHome({QStringLiteral("Music"), QStringLiteral("Movies")}),
                inHome({QStringLiteral("Library/Mail"), QStringLiteral("Library/Messages")})};
    }
    const QMap<QString, QString>& dirs = data.linuxSystem->userDirs;
    const auto named = [&](std::initializer_list<QString> keys) {
        QStringList out;
        for (const QString& k : keys)
            if (dirs.contains(k)) out.append(dirs.value(k));
        return out;
    };
    return {named({UserDirs::pictures}), inHome({QStringLiteral("Applications")}),
            named({UserDirs::documents, UserDirs::desktop}), named({UserDirs::download}),
            named({UserDirs::music, UserDirs::videos}),
            inHome({QStringLiteral(".thunderbird"), QStringLiteral(".local/share/evolution/mail")})};
}

}  // namespace

namespace SystemData {

qint64 atLeastZero(qint64 n) { return std::max<qint64>(n, 0); }

qint64 bytesAt(const SpaceNode& home, const QString& path) {
    const SpaceNode* node = home.find(path);
    return node ? node->bytes : 0;
}

Claims::Claims(const SpaceNode& home) : home_(home) {}

qint64 Claims::take(const QStringList& folders) {
    qint64 sum = 0;
    for (const QString& folder : folders) {
        const auto inside = [&](const QString& f) { return Paths::isWithin(folder, f); };
        if (std::any_of(taken_.cbegin(), taken_.cend(), inside)) continue;  // counted already
        // Folders taken before that lie inside this one are counted already: the outermost of them
        // come off its bytes.
        QStringList inner;
        for (const QString& t : taken_)
            if (Paths::isWithin(t, folder)) inner.append(t);
        qint64 bytes = bytesAt(home_, folder);
        for (const QString& t : inner) {
            const bool outermost = std::none_of(inner.cbegin(), inner.cend(),
                                                [&](const QString& o) { return o != t && Paths::isWithin(t, o); });
            if (outermost) bytes = Checked::sub(bytes, bytesAt(home_, t));
        }
        taken_.append(folder);
        sum = Checked::add(sum, atLeastZero(bytes));
    }
    total_ = Checked::add(total_, sum);
    return sum;
}

HomeSlices homeSlices(const ScanData& data, Claims& claims) {
    const SliceFolders folders = sliceFolders(data);
    HomeSlices h;
    h.developer = claims.take(inHome(developerFolders()));
    h.photos = claims.take(folders.photos);
    h.apps = claims.take(folders.apps);
    h.documents = claims.take(folders.documents);
    h.downloads = claims.take(folders.downloads);
    h.media = claims.take(folders.media);
    h.mail = claims.take(folders.mail);
    return h;
}

qint64 HomeSlices::sum() const {
    qint64 s = 0;
    for (qint64 v : {developer, photos, apps, documents, downloads, media, mail}) s = Checked::add(s, v);
    return s;
}

qint64 trashRowBytes(const ScanData& data) {
    return Scanner::trash(SystemData::trashMeasured(data), data.quarleTrash, data.fullDiskAccess).bytes;
}

}  // namespace SystemData

namespace {

// Settings and documents apps keep, less what other rows and slices already count.
qint64 appsOwnData(const SpaceNode& home) {
    const qint64 all = sumAt(home, {QStringLiteral("Library/Application Support"), QStringLiteral("Library/Containers"),
                                    QStringLiteral("Library/Group Containers"), QStringLiteral("Library/Preferences")});
    return atLeastZero(Checked::sub(all, Checked::add(nodeBytes(home, mobileBackups), nodeBytes(home, dockerContainer))));
}

}  // namespace

namespace SystemData {

qint64 trashMeasured(const ScanData& data) {
    const QString files = Scanner::trashFiles();
    const SpaceNode* node = data.home.find(files);
    const qint64 measured = node ? node->bytes : data.outside.value(files, 0);
    return std::max<qint64>(Checked::sub(measured, data.trashFolderBlocks), 0);
}

QStringList developerFolders() {
    static const QStringList folders = [] {
        // Xcode, the simulators and the Docker disk live in these; the developer rows add their own
        // folders, and projects count here unless they sit in a folder another slice counts.
        QStringList all{QStringLiteral("Library/Developer"), dockerContainer};
        for (const Catalogue::Rule& rule : Catalogue::rules())
            if (rule.developer) all.append(rule.paths);
        for (const QString& root : Catalogue::codeRoots())
            if (!Paths::isWithin(root, QStringLiteral("Documents")) && !Paths::isWithin(root, QStringLiteral("Desktop")))
                all.append(root);
        QStringList outer;
        for (const QString& f : all) {
            const bool inside = std::any_of(all.cbegin(), all.cend(), [&](const QString& other) {
                return other != f && Paths::isWithin(f, other);
            });
            if (!inside && !outer.contains(f)) outer.append(f);
        }
        return outer;
    }();
    return folders;
}

Bar diskBar(const ScanData& data, const Volume& volume) {
    Claims claims(data.home);
    const HomeSlices h = homeSlices(data, claims);
    const bool access = data.fullDiskAccess.value_or(false);
    const auto out = [&](const char* path) { return data.outside.value(QLatin1String(path), 0); };
    QList<DiskPart> slices{
        {QStringLiteral("Developer"), Checked::add(h.developer, out("/Library/Developer")), Paint::lavender},
        {QStringLiteral("Photos"), h.photos, Paint::peach},
        {QStringLiteral("Apps"), Checked::add(h.apps, out("/Applications")), Paint::sky},
        {QStringLiteral("Documents"), h.documents, Paint::butter},
        {QStringLiteral("Downloads"), h.downloads, Paint::aqua},
        {QStringLiteral("Music & Movies"), h.media, Paint::mint},
        {QStringLiteral("Mail & Messages"), h.mail, Paint::sand},
        // The slice shows what the Trash row shows, so the two never disagree.
        {access ? QStringLiteral("Trash") : QStringLiteral("Trash (Quarle's)"), trashRowBytes(data), Paint::stone},
    };
    qint64 explained = 0;
    for (const DiskPart& s : slices) explained = Checked::add(explained, s.bytes);
    Bar bar;
    bar.systemTotal = atLeastZero(Checked::sub(volume.used(), explained));
    slices.append({QStringLiteral("System Data"), bar.systemTotal, Paint::pink});
    slices.removeIf([](const DiskPart& s) { return s.bytes <= 0; });
    std::stable_sort(slices.begin(), slices.end(), [](const DiskPart& a, const DiskPart& b) { return a.bytes > b.bytes; });
    bar.strata = std::move(slices);
    return bar;
}

QList<SystemPart> breakdown(const ScanData& data, const Volume& volume, const QList<Finding>& findings,
                            qint64 systemTotal) {
    if (data.linuxSystem) return linuxBreakdown(data, findings, systemTotal);
    const SpaceNode& home = data.home;
    const auto out = [&](const char* path) { return data.outside.value(QLatin1String(path), 0); };
    const qint64 caches = findingBytes(findings, QStringLiteral("caches"));
    const qint64 logs = findingBytes(findings, QStringLiteral("logs"));
    const qint64 ownData = appsOwnData(home);
    const qint64 backups = nodeBytes(home, mobileBackups);
    const qint64 iCloud = nodeBytes(home, QStringLiteral("Library/Mobile Documents"));

    // The system's own volumes: everything used that is neither the Data volume nor the VM volume.
    const qint64 macOS = data.dataVolumeUsed
        ? atLeastZero(Checked::sub(Checked::sub(volume.used(), *data.dataVolumeUsed), data.vmVolumeUsed.value_or(0)))
        : 0;
    // What is left of the home once every slice and every row above has taken its folders.
    Claims claims(home);
    qint64 homeElsewhere = Checked::add(homeSlices(data, claims).sum(), caches);
    for (qint64 v : {logs, ownData, backups, iCloud}) homeElsewhere = Checked::add(homeElsewhere, v);
    if (Paths::isWithin(Scanner::trashFiles(), home.path))
        homeElsewhere = Checked::add(homeElsewhere, trashMeasured(data));
    const qint64 otherHome = atLeastZero(Checked::sub(home.bytes, homeElsewhere));
    const qint64 shared = atLeastZero(
        Checked::add(Checked::sub(out("/Library"), out("/Library/Developer")), out("/Users/Shared")));
    // The VM volume holds the swap files and the sleep image; without its figure, swap alone.
    const qint64 swap = std::max(data.swap, data.vmVolumeUsed.value_or(0));

    const bool access = data.fullDiskAccess.value_or(false);
    using B = Bucket;
    QList<SystemPart> rows{
        {QStringLiteral("App caches"), caches, Paint::mint, B::now, QStringLiteral("Clear in Clean. Apps rebuild them."), false},
        {QStringLiteral("Logs and crash reports"), logs, Paint::pink, B::now, QStringLiteral("Clear in Clean."), false},
        {QStringLiteral("macOS itself"), macOS, Paint::stone, B::keep,
         QStringLiteral("The system, its recovery copy and update files. macOS looks after these."), true},
        {QStringLiteral("Apps' own data"), ownData, Paint::lavender, B::keep,
         QStringLiteral("Settings and documents apps keep. It goes when you uninstall the app."), false},
        {QStringLiteral("iPhone and iPad backups"), backups, Paint::peach, B::keep, QStringLiteral("Yours. Manage in Finder."), false},
        {QStringLiteral("Purgeable"), volume.purgeable(), Paint::aqua, B::keep,
         QStringLiteral("macOS frees this by itself when space runs low."), false},
        {QStringLiteral("Temporary files"), out("temp"), Paint::butter, B::keep,
         QStringLiteral("Scratch files apps and macOS keep while they work. macOS clears them when they're no longer needed."),
         false},
        {QStringLiteral("Other files in your home"), otherHome, Paint::sand, B::keep,
         QStringLiteral("Hidden folders tools keep (names starting with a dot) and macOS's own caches. Browse them in Storage."),
         false},
        {QStringLiteral("Shared files in /Library"), shared, Paint::sky, B::keep,
         QStringLiteral("Fonts, drivers and app files shared by every user of this Mac."), false},
        {QStringLiteral("iCloud Drive on this Mac"), iCloud, Paint::aqua, B::keep,
         QStringLiteral("Files from iCloud Drive kept on this Mac. Finder can remove the download and keep them in iCloud."),
         false},
        // Memory on disk: nothing the user can clear, so kept, in a paint of its own among its neighbours.
        {QStringLiteral("Swap and sleep image"), swap, Paint::butter, B::keep, QStringLiteral("Memory on disk. Shrinks after a restart."),
         false},
    };
    qint64 accounted = 0;
    for (const SystemPart& row : rows) accounted = Checked::add(accounted, row.bytes);
    // Whatever System Data holds beyond the rows is an estimate by subtraction.
    rows.append({QStringLiteral("Not measured"), atLeastZero(Checked::sub(systemTotal, accounted)), Paint::stone, B::keep,
                 QStringLiteral("Folders only macOS can read, the Spotlight index") +
                     (access ? QStringLiteral(" and other users' files.")
                             : QStringLiteral(", and Mail, Messages, Safari and the Trash until Full Disk Access is on.")),
                 true});
    // A row of 0 bytes explains nothing.
    rows.removeIf([](const SystemPart& p) { return p.bytes <= 0; });
    std::stable_sort(rows.begin(), rows.end(), [](const SystemPart& a, const SystemPart& b) { return a.bytes > b.bytes; });
    return rows;
}

}  // namespace SystemData
