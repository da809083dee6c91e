// The demonstration home: a developer's 1 TB Mac with a few hundred gigabytes used, something for
// every cleaning rule and every extra check, a Trash and a rich System Data.

#include "core/checked.h"
#include "core/fmt.h"
#include "core/home.h"
#include "core/paths.h"
#include "demo/demo.h"
#include "demo/demo_tree.h"
#include "scan/extras.h"
#include "scan/rows.h"
#include "scan/scanner.h"

using namespace DemoTree;

namespace {

constexpr qint64 diskTotal = 994'662'584'320;  // what a "1 TB" Mac reports
constexpr qint64 trashBytes = 3'400 * MB;
constexpr qint64 quarleTrashBytes = 1'150 * MB;
constexpr qint64 macOSItself = 14 * GB;
constexpr qint64 vmVolume = 5 * GB;
constexpr qint64 notMeasured = 11 * GB;
constexpr qint64 purgeable = 18 * GB;

Item library() {
    return folder("Library", {
        folder("Caches", {
            summed("com.spotify.client", 1'800 * MB, 1), summed("Google", 2'400 * MB, 0.2),
            summed("com.tinyspeck.slackmacgap", 900 * MB, 2), summed("Firefox", 1'100 * MB, 5),
            summed("com.microsoft.VSCode.ShipIt", 400 * MB, 40), summed("com.figma.Desktop", 650 * MB, 12),
            summed("com.apple.Safari", 600 * MB, 1), summed("com.apple.bird", 300 * MB, 1),
            file("com.plausiblelabs.crashreporter.data", 2 * MB, 60),
            folder("Homebrew", {summed("downloads", 2'900 * MB, 9), summed("Cask", 300 * MB, 30)}, 9),
            summed("Yarn", 2'100 * MB, 25), summed("pip", 800 * MB, 14), summed("CocoaPods", 1'400 * MB, 70),
            folder("ms-playwright", {summed("chromium-1091", 500 * MB, 45), summed("firefox-1429", 400 * MB, 45),
                                     summed("webkit-1944", 350 * MB, 45)}, 45),
            summed("org.swift.swiftpm", 1'200 * MB, 6), summed("pnpm", 900 * MB, 20), summed("go-build", 2'600 * MB, 3),
            folder("JetBrains", {summed("IntelliJIdea2023.3", 1'900 * MB, 2), summed("WebStorm2023.2", 1'100 * MB, 95),
                                 summed("IntelliJIdea2022.3", 2'200 * MB, 400)}, 2),
        }, 0.2),
        folder("Logs", {summed("DiagnosticReports", 120 * MB, 4), summed("JetBrains", 400 * MB, 2),
                        summed("CoreSimulator", 600 * MB, 30), file("fsck_hfs.log", 3 * MB, 100)}, 2),
        folder("Developer", {
            folder("Xcode", {
                folder("DerivedData", {summed("Quarle-bqzmhxjtcvwdkfnlgyepsaruoiyk", 3'100 * MB, 1),
                                       summed("OldShop-ahtwkvzpqlbcmxeyfjgudsnrioeb", 5'400 * MB, 40),
                                       summed("Widgets-dlsqxmbvnwhjkrtyfzcapgueiorx", 2'200 * MB, 3)}, 1),
                folder("iOS DeviceSupport", {summed("iPhone15,2 17.1 (21B80)", 4'100 * MB, 20),
                                             summed("iPhone15,2 16.4 (20E247)", 3'900 * MB, 200),
                                             summed("iPhone12,1 16.7 (20H19)", 3'500 * MB, 300)}, 20),
                folder("watchOS DeviceSupport", {summed("Watch6,1 10.1 (21S71)", 2'100 * MB, 60)}, 60),
                folder("Archives", {summed("2024-05-02", 800 * MB, 3), summed("2023-11-20", 1'400 * MB, 180)}, 3),
            }, 1),
            folder("CoreSimulator", {summed("Caches", 4'800 * MB, 5),
                                     folder("Devices", {summed("5F1C2B7E-93A4-4C61-9E0B-2D7F8A31C4E9", 2'300 * MB, 400),
                                                        summed("A0B3D5C1-7E2F-4A8B-B6D9-1C3E5F7A9B2D", 1'700 * MB, 500),
                                                        summed("C7E2A9F4-1B3D-4E5A-8C6F-9D0B2A4C6E8F", 9'000 * MB, 1)},
                                            1)}, 1),
        }, 1),
        folder("Application Support", {
            folder("MobileSync", {folder("Backup", {summed("00008110-001A2B3C4D5E6F70", 42 * GB, 12),
                                                    summed("00008030-000D4E5F60718293", 28 * GB, 240)}, 12)}, 12),
            summed("Slack", 1'200 * MB, 1), summed("Code", 2'100 * MB, 1), summed("Google", 1'500 * MB, 1),
            summed("Spotify", 3'200 * MB, 2), summed("com.apple.sharedfilelist", 10 * MB, 3),
        }, 1),
        folder("Containers", {
            folder("com.docker.docker", {folder("Data", {folder("vms", {folder("0", {folder("data", {
                file("Docker.raw", 38 * GB, 1)}, 1)}, 1)}, 1), summed("log", 90 * MB, 1)}, 1)}, 1),
            summed("com.apple.Notes", 400 * MB, 2), summed("com.microsoft.Word", 1'200 * MB, 30),
        }, 1),
        folder("Group Containers", {summed("group.com.apple.notes", 300 * MB, 2),
                                    summed("UBF8T346G9.Office", 2'200 * MB, 30)}, 2),
        summed("Preferences", 50 * MB, 0.1),
        summed("Mail", 6'500 * MB, 0.1),
        summed("Messages", 9'200 * MB, 0.1),
        summed("Mobile Documents", 14 * GB, 1),
        folder("pnpm", {folder("store", {summed("v3", 3'800 * MB, 20)}, 20)}, 20),
    }, 0.1);
}

Item project(const QString& name, qint64 modules, qint64 source, double ageDays) {
    return folder(name, {summed("node_modules", modules, ageDays), summed("src", source, ageDays),
                         file("package.json", 4'000, ageDays)}, ageDays);
}

Item home() {
    return folder("Home", {
        library(),
        folder(".npm", {summed("_cacache", 2'700 * MB, 4), summed("_npx", 600 * MB, 30)}, 4),
        folder(".cache", {summed("pip", 900 * MB, 14), summed("uv", 500 * MB, 8),
                          folder("puppeteer", {summed("chrome", 600 * MB, 50), summed("chrome-headless-shell", 250 * MB, 50)}, 50),
                          folder("huggingface", {summed("hub", 12 * GB, 10), summed("datasets", 3 * GB, 90)}, 10)}, 4),
        folder(".gradle", {summed("caches", 4'400 * MB, 15), summed("wrapper", 700 * MB, 15)}, 15),
        folder(".cargo", {summed("registry", 2'300 * MB, 11), summed("bin", 150 * MB, 11)}, 11),
        folder(".ollama", {summed("models", 18 * GB, 25)}, 25),
        folder(".vscode", {summed("extensions", 1'300 * MB, 3)}, 3),
        folder("Applications", {summed("Chrome Apps.localized", 40 * MB, 100), summed("Tot.app", 30 * MB, 100)}, 100),
        folder("Pictures", {summed("Photos Library.photoslibrary", 61 * GB, 0.5), summed("Screenshots", 900 * MB, 0.3)}, 0.3),
        folder("Documents", {summed("Taxes", 1'200 * MB, 60), summed("Book drafts", 800 * MB, 9),
                             folder("GitHub", {project("dotfiles", 0, 20 * MB, 3), project("recipes", 450 * MB, 30 * MB, 300)}, 3),
                             summed("Scans", 2'600 * MB, 120), file("Quarterly plan.key", 180 * MB, 15)}, 1),
        folder("Desktop", {file("Screen Recording 2024-05-01.mov", 1'900 * MB, 20), file("notes.txt", 8'000, 1)}, 1),
        folder("Downloads", {
            file("Docker.dmg", 610 * MB, 45), file("Firefox 121.0.dmg", 130 * MB, 150), file("Zoom.pkg", 95 * MB, 60),
            file("Figma-124.5.dmg", 210 * MB, 20), file("Xcode_15.4.xip", 3'300 * MB, 30),
            file("ubuntu-24.04-desktop-amd64.iso.crdownload", 2'400 * MB, 9), file("dataset.zip.part", 700 * MB, 30),
            file("keynote-video.mov.download", 300 * MB, 0.1),
            file("invoice-0424.pdf", 2 * MB, 35), summed("conference-photos", 1'800 * MB, 70),
        }, 0.1),
        folder("Movies", {summed("Final Cut Projects", 29 * GB, 40), file("Holiday.mp4", 9 * GB, 200)}, 40),
        folder("Music", {summed("Music", 11 * GB, 100), summed("GarageBand", 1'100 * MB, 300)}, 100),
        folder("Projects", {project("shop-web", 900 * MB, 60 * MB, 200), project("quarle-site", 400 * MB, 15 * MB, 2),
                            project("old-dashboard", 1'300 * MB, 40 * MB, 400), project("api-gateway", 700 * MB, 80 * MB, 12)},
               2),
    }, 0.1);
}

// The parts of an extra row read off the demonstration tree.
Part partAt(const SpaceNode& tree, const QString& path, const QString& name, const QString& verb, const QDateTime& now) {
    const SpaceNode* node = tree.find(path);
    const qint64 bytes = node ? node->bytes : 0;
    const std::optional<QDateTime> date = node ? node->modified : std::nullopt;
    return {name, path, bytes, Rows::agoNote(verb, date, now), date};
}

QList<Finding> extras(const SpaceNode& tree, const QDateTime& now) {
    QList<Finding> out;
    const QString projects = Home::at(QStringLiteral("Projects"));
    const QString github = Home::at(QStringLiteral("Documents/GitHub"));
    Finding modules = Scanner::extraRow(QStringLiteral("nodemodules"));
    for (const QString& p : {projects + "/shop-web", projects + "/old-dashboard", github + "/recipes"}) {
        const SpaceNode* project = tree.find(p);
        modules.parts.append(partAt(tree, p + QStringLiteral("/node_modules"), Fmt::path(p), QStringLiteral("changed"), now));
        modules.parts.last().modified = project->modified;
        modules.parts.last().note = Rows::agoNote(QStringLiteral("changed"), project->modified, now);
    }
    out << *Rows::finish(modules, Fmt::path(projects) + QStringLiteral(" and 1 more · "), QStringLiteral("folder"));

    const QString downloads = Home::at(QStringLiteral("Downloads"));
    const QString prefix = Fmt::path(downloads) + QStringLiteral(" · ");
    Finding installers = Scanner::extraRow(QStringLiteral("installers"));
    const QStringList installed{QStringLiteral("Docker"), QStringLiteral("Firefox"), QStringLiteral("Xcode")};
    for (const char* name : {"Docker.dmg", "Firefox 121.0.dmg", "Zoom.pkg", "Figma-124.5.dmg", "Xcode_15.4.xip"}) {
        Part p = partAt(tree, downloads + QLatin1Char('/') + QLatin1String(name), QLatin1String(name),
                        QStringLiteral("downloaded"), now);
        if (const auto app = Scanner::installedApp(p.name, installed)) p.note += QStringLiteral(" · ") + *app + QStringLiteral(" is installed");
        installers.parts.append(p);
    }
    out << *Rows::finish(installers, prefix, QStringLiteral("file"));

    Finding unfinished = Scanner::extraRow(QStringLiteral("unfinished"));
    for (const char* name : {"ubuntu-24.04-desktop-amd64.iso.crdownload", "dataset.zip.part"})
        unfinished.parts.append(partAt(tree, downloads + QLatin1Char('/') + QLatin1String(name), QLatin1String(name),
                                       QStringLiteral("stopped"), now));
    out << *Rows::finish(unfinished, prefix, QStringLiteral("file"));

    Finding macOS = Scanner::extraRow(QStringLiteral("macosinstallers"));
    macOS.parts.append({QStringLiteral("Install macOS Sonoma.app"), QStringLiteral("/Applications/Install macOS Sonoma.app"),
                        13'300 * MB, Rows::agoNote(QStringLiteral("downloaded"), daysBefore(now, 210), now), daysBefore(now, 210)});
    out << *Rows::finish(macOS, QStringLiteral("/Applications · "), QStringLiteral("installer"));

    Finding sims = Scanner::extraRow(QStringLiteral("unavailablesims"));
    const QString devices = Home::at(QStringLiteral("Library/Developer/CoreSimulator/Devices/"));
    sims.parts.append(partAt(tree, devices + "5F1C2B7E-93A4-4C61-9E0B-2D7F8A31C4E9", QStringLiteral("iPhone 8"), {}, now));
    sims.parts.append(partAt(tree, devices + "A0B3D5C1-7E2F-4A8B-B6D9-1C3E5F7A9B2D", QStringLiteral("iPad Air (3rd generation)"), {}, now));
    sims.parts[0].note = QStringLiteral("iOS 15.5");
    sims.parts[1].note = QStringLiteral("iPadOS 15.5");
    out << *Rows::finish(sims, QStringLiteral("xcrun simctl · "), QStringLiteral("file"));
    return out;
}

QMap<QString, qint64> outside() {
    return {{QStringLiteral("/Applications"), 41 * GB}, {QStringLiteral("/opt/homebrew"), 6'200 * MB},
            {QStringLiteral("/usr/local"), 400 * MB},   {QStringLiteral("/Library/Developer"), 9'500 * MB},
            {QStringLiteral("/Library"), 21 * GB},      {QStringLiteral("/Users/Shared"), 800 * MB},
            {QStringLiteral("temp"), 2'300 * MB}};
}

// The home tree with the Trash in its stand-in folder.
SpaceNode homeTree(const QDateTime& now) {
    SpaceNode tree = build(home(), Home::path(), now);
    tree.adjust(Scanner::trashFiles(), trashBytes, true, true);
    return tree;
}

// Used space: everything measured, the swap volume, the system's own volumes, what the system could
// purge and what no one can read.
qint64 used(const SpaceNode& tree) {
    qint64 sum = tree.bytes;
    const QMap<QString, qint64> out = outside();
    for (auto it = out.begin(); it != out.end(); ++it)
        if (it.key() != QLatin1String("/Library/Developer")) sum = Checked::add(sum, it.value());
    for (qint64 v : {vmVolume, macOSItself, purgeable, notMeasured}) sum = Checked::add(sum, v);
    return sum;
}

}  // namespace

namespace Demo {

bool isOn() { return qEnvironmentVariableIsSet("QUARLE_DEMO"); }

Volume volume() {
    const qint64 free = Checked::sub(diskTotal, used(homeTree(QDateTime::fromSecsSinceEpoch(0))));
    return {QStringLiteral("Macintosh HD"), diskTotal, free, Checked::add(free, purgeable)};
}

ScanData scanData(const QDateTime& now) {
    ScanData d;
    d.home = homeTree(now);
    d.outside = outside();
    d.extras = extras(d.home, now);
    d.snapshots = {QStringLiteral("com.apple.TimeMachine.%1.local").arg(daysBefore(now, 1).toString(QStringLiteral("yyyy-MM-dd-HHmmss"))),
                   QStringLiteral("com.apple.TimeMachine.%1.local").arg(daysBefore(now, 0.2).toString(QStringLiteral("yyyy-MM-dd-HHmmss")))};
    d.swap = 2'100 * MB;
    const qint64 totalUsed = used(d.home);
    d.vmVolumeUsed = vmVolume;
    d.dataVolumeUsed = Checked::sub(Checked::sub(totalUsed, macOSItself), vmVolume);
    d.quarleTrash = quarleTrashBytes;
    d.fullDiskAccess = true;
    d.files = 1'284'512;
    d.seconds = 11.8;
    d.date = now;
    return d;
}

}  // namespace Demo
