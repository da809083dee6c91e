#include <gtest/gtest.h>

#include <cstdio>

#include "core/home.h"
#include "core/paths.h"
#include "scan/extras.h"
#include "scan/scan_fixture.h"
#include "scan/scanner.h"
#include "support/files.h"
#include "support/mac_home.h"
#include "support/sandbox.h"

namespace {

const Volume volume{"Disk", 1'000'000'000'000, 500'000'000'000, 500'000'000'000};

Scanned scanHome() { return scanSandbox(volume); }

void moveTo(const QString& from, const QString& to) {
    Files::makeDirs(Paths::parentOf(to));
    ASSERT_EQ(std::rename(Files::bytes(from).constData(), Files::bytes(to).constData()), 0);
}

// What a test compares between a re-derived result and a fresh one: every figure, not the dates.
struct Figures {
    QList<std::tuple<QString, qint64, QStringList, QList<qint64>>> findings;
    QList<DiskPart> strata;
    QList<SystemPart> system;
    qint64 home = 0;
    bool operator==(const Figures&) const = default;
};

Figures figures(const ScanResult& r) {
    Figures f;
    for (const Finding& x : r.findings) {
        QStringList paths;
        QList<qint64> sizes;
        for (const Part& p : x.parts) {
            paths.append(p.path);
            sizes.append(p.bytes);
        }
        f.findings.append({x.id, x.bytes, paths, sizes});
    }
    f.strata = r.strata;
    f.system = r.system;
    f.home = r.home.bytes;
    return f;
}

void PrintTo(const Figures& f, std::ostream* os) {
    for (const auto& [id, bytes, paths, sizes] : f.findings) *os << id.toStdString() << "=" << bytes << " ";
    *os << "home=" << f.home;
}

}  // namespace

TEST(Scan, FindingsOnAMacShapedHome) {
    Sandbox::clearHome();
    MacHome mac(Sandbox::home());
    mac.everything();
    const Scanned s = scanHome();
    const ScanResult& r = s.result;
    EXPECT_EQ(r.home.name, "Home");
    EXPECT_EQ(r.home.path, Sandbox::home());
    EXPECT_EQ(r.home.bytes, mac.bytesUnder(""));

    // Every rule with a folder gives its row. Rules of one folder are all measured alike (homebrew
    // stands for them); rows that join places, leave out other rows' folders or are extras, byte for byte.
    const QMap<QString, qint64> rows = checkedRows(r);
    EXPECT_EQ(rows.keys(), QStringList({"archives", "backups", "caches", "cargo", "cocoapods", "derived", "devicesupport",
                                        "docker", "gobuild", "gradle", "homebrew", "huggingface", "installers", "jetbrains",
                                        "logs", "nodemodules", "npm", "ollama", "pip", "playwright", "pnpm", "simcaches",
                                        "swiftpm", "unfinished", "yarn"}));
    const qint64 ownRows = mac.bytesUnder("Library/Caches/Homebrew") + mac.bytesUnder("Library/Caches/Yarn") +
                           mac.bytesUnder("Library/Caches/pip") + mac.bytesUnder("Library/Caches/CocoaPods") +
                           mac.bytesUnder("Library/Caches/ms-playwright") + mac.bytesUnder("Library/Caches/org.swift.swiftpm") +
                           mac.bytesUnder("Library/Caches/pnpm") + mac.bytesUnder("Library/Caches/go-build") +
                           mac.bytesUnder("Library/Caches/JetBrains");
    const qint64 apple = mac.bytesUnder("Library/Caches/com.apple.Safari") + mac.bytesUnder("Library/Caches/com.apple.bird");
    const QMap<QString, qint64> exact{
        {"caches", mac.bytesInside("Library/Caches") - ownRows - apple},
        {"homebrew", mac.bytesUnder("Library/Caches/Homebrew")},
        {"npm", mac.bytesUnder(".npm/_cacache") + mac.bytesUnder(".npm/_npx")},
        {"pip", mac.bytesUnder("Library/Caches/pip") + mac.bytesUnder(".cache/pip") + mac.bytesUnder(".cache/uv")},
        {"devicesupport", mac.bytesInside("Library/Developer/Xcode/iOS DeviceSupport") +
                              mac.bytesInside("Library/Developer/Xcode/watchOS DeviceSupport")},
        {"pnpm", mac.bytesUnder("Library/pnpm/store") + mac.bytesUnder("Library/Caches/pnpm")},
        {"nodemodules", mac.bytesUnder("Projects/old-shop/node_modules") + mac.bytesUnder("Documents/GitHub/recipes/node_modules")},
        {"installers", mac.bytesUnder("Downloads/Firefox 121.0.dmg") + mac.bytesUnder("Downloads/Zoom.pkg")},
        {"unfinished", mac.bytesUnder("Downloads/ubuntu.iso.crdownload")},
    };
    for (auto it = exact.begin(); it != exact.end(); ++it) EXPECT_EQ(rows.value(it.key()), it.value()) << it.key().toStdString();

    // Parts: the items inside listing rows, loose small files included; whole folders otherwise.
    EXPECT_EQ(partNames(findingOf(r, "caches")),
              QStringList({"com.applesauce", "com.spotify.client", "loose-cache.db", "org.mozilla.firefox"}));
    EXPECT_EQ(partNames(findingOf(r, "logs")), QStringList({"DiagnosticReports", "fsck_hfs.log", "install.log"}));
    EXPECT_EQ(partNames(findingOf(r, "derived")), QStringList({"ModuleCache.noindex", "OldShop", "Quarle"}));
    EXPECT_EQ(partNames(findingOf(r, "npm")), QStringList({"~/.npm/_cacache", "~/.npm/_npx"}));
    const Finding* derived = findingOf(r, "derived");
    for (const Part& p : derived->parts)
        if (p.name == "OldShop") {
            EXPECT_EQ(p.note, "changed 5 weeks ago");
        }

    // The extras: an idle project's node_modules, not a fresh one's; installers with the app that
    // is installed; only the partial download that stopped more than a day ago.
    EXPECT_EQ(partNames(findingOf(r, "nodemodules")), QStringList({"~/Documents/GitHub/recipes", "~/Projects/old-shop"}));
    const Finding* installers = findingOf(r, "installers");
    ASSERT_TRUE(installers);
    for (const Part& p : installers->parts)
        EXPECT_EQ(p.note, p.name == "Zoom.pkg" ? "downloaded 2 months ago" : "downloaded 5 months ago · Firefox is installed");
    EXPECT_EQ(findingOf(r, "unfinished")->parts[0].note, "stopped 9 days ago");
    // The account's own home looks for macOS installers in /Applications only.
    EXPECT_FALSE(findingOf(r, "macosinstallers"));
    const auto macOS = Scanner::macOSInstallers(Home::at("Applications"), QDateTime::currentDateTimeUtc());
    ASSERT_TRUE(macOS);
    EXPECT_EQ(macOS->bytes, mac.bytesUnder("Applications/Install macOS Sonoma.app"));
    EXPECT_FALSE(findingOf(r, "unavailablesims"));  // no simctl here
    EXPECT_FALSE(findingOf(r, "trash"));  // no Trash yet

    // Order: bucket, then size.
    for (qsizetype i = 1; i < r.findings.size(); ++i) {
        const Finding& a = r.findings[i - 1];
        const Finding& b = r.findings[i];
        EXPECT_TRUE(a.bucket < b.bucket || (a.bucket == b.bucket && a.bytes >= b.bytes)) << b.id.toStdString();
    }
}

TEST(Scan, MissingFoldersGiveNothing) {
    Sandbox::clearHome();
    MacHome mac(Sandbox::home());
    mac.file("Documents/letter.txt", 8192);
    Files::makeDirs(Sandbox::home() + "/Library/Caches");  // there, but empty
    Files::makeDirs(Sandbox::home() + "/Downloads");
    Files::symlink("/usr", Sandbox::home() + "/.gradle");  // a link is never followed
    const Scanned s = scanHome();
    EXPECT_EQ(s.result.findings, QList<Finding>());
    EXPECT_EQ(s.data.extras, QList<Finding>());
    EXPECT_FALSE(s.data.home.find(Sandbox::home() + "/.gradle/caches"));
}

TEST(Scan, ReDerivingAfterRemovedRestoredAndEmptiedGivesWhatAFreshScanGives) {
    Sandbox::clearHome();
    MacHome mac(Sandbox::home());
    mac.everything();
    // The Trash is there before anything goes to it: the folders a first removal makes are news
    // to a re-derivation, as any file written meanwhile.
    Files::makeDirs(Scanner::trashFiles());
    Files::makeDirs(Home::trashFolder() + "/info");
    Scanned first = scanHome();
    ScanData data = first.data;
    const Finding caches = *findingOf(first.result, "caches");
    const Finding installers = *findingOf(first.result, "installers");
    const Finding derived = *findingOf(first.result, "derived");
    const Part spotify = *std::find_if(caches.parts.begin(), caches.parts.end(), [](const Part& p) { return p.name == "com.spotify.client"; });
    const Part zoom = *std::find_if(installers.parts.begin(), installers.parts.end(), [](const Part& p) { return p.name == "Zoom.pkg"; });
    const Part firefox = *std::find_if(installers.parts.begin(), installers.parts.end(), [](const Part& p) { return p.name != "Zoom.pkg"; });
    const Part oldShop = *std::find_if(derived.parts.begin(), derived.parts.end(), [](const Part& p) { return p.name == "OldShop"; });
    const QString trash = Scanner::trashFiles();

    // Three items go to the Trash: a folder the tree holds, an installer, and a folder below the walk's depth.
    for (const auto& [finding, part] : {std::pair{caches, spotify}, std::pair{installers, zoom}, std::pair{installers, firefox},
                                       std::pair{derived, oldShop}}) {
        const QString to = trash + "/" + Paths::lastComponent(part.path);
        moveTo(part.path, to);
        data.removed(finding, part, to);
    }
    data.quarleTrash = 0;  // what the history would say is not the point here
    Scanned fresh = scanHome();
    EXPECT_EQ(figures(Scanner::derive(data, volume)), figures(fresh.result));
    EXPECT_FALSE(findingOf(Scanner::derive(data, volume), "installers"));  // its last item went
    EXPECT_EQ(findingOf(fresh.result, "trash")->bytes, spotify.bytes + zoom.bytes + firefox.bytes + oldShop.bytes);
    EXPECT_EQ(data.parked.size(), 4);

    // Two come back.
    for (const Part& part : {zoom, spotify}) {
        moveTo(trash + "/" + Paths::lastComponent(part.path), part.path);
        EXPECT_TRUE(data.restored(part.path));
    }
    EXPECT_FALSE(data.restored(spotify.path));  // nothing parked there any more
    fresh = scanHome();
    EXPECT_EQ(figures(Scanner::derive(data, volume)), figures(fresh.result));

    // The Trash is emptied.
    const qint64 left = firefox.bytes + oldShop.bytes;
    Files::removeTree(trash);
    Files::makeDirs(trash);
    data.emptied(left);
    fresh = scanHome();
    EXPECT_EQ(figures(Scanner::derive(data, volume)), figures(fresh.result));
    EXPECT_EQ(data.quarleTrash, 0);
}
