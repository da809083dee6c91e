#include <gtest/gtest.h>

#include "core/home.h"
#include "scan/extras.h"
#include "scan/scan_fixture.h"
#include "scan/scan_json.h"
#include "scan/scanner.h"

namespace {

// A home tree written by hand: each folder at its size, the folders above it summed.
struct TreeBuilder {
    SpaceNode home{"Home", Home::path(), 0, true, {}, {}, {}};
    TreeBuilder& at(const QString& relative, qint64 bytes) {
        home.adjust(Home::at(relative), bytes, true, true);
        return *this;
    }
};

ScanData sample(std::optional<bool> access) {
    TreeBuilder t;
    t.at("Pictures", 100).at("Documents", 50).at("Desktop", 10).at("Downloads", 20).at("Music", 5).at("Movies", 0);
    t.at("Library/Developer", 40).at(".gradle/caches", 6);
    t.at("Library/Caches/com.x", 9).at("Library/Caches/Homebrew", 4).at("Library/Caches/com.apple.y", 2);
    t.at("Library/Logs/a.log", 8);
    t.at("Library/Application Support/MobileSync/Backup", 12).at("Library/Application Support/App", 18);
    t.at("Library/Containers/com.docker.docker/Data/vms", 18).at("Library/Containers/com.docker.docker/log", 2);
    t.at("Library/Containers/com.other", 5).at("Library/Preferences", 1).at("Library/Mobile Documents", 11);
    t.at(".hidden", 13).at(Scanner::trashFiles().mid(Home::path().size() + 1), 6);
    ScanData d;
    d.home = t.home;
    d.outside = {{"/Applications", 200}, {"/Library", 70}, {"/Library/Developer", 15}, {"/Users/Shared", 5},
                 {"temp", 4}, {"/opt/homebrew", 9}};
    d.swap = 3;
    d.vmVolumeUsed = 8;
    d.dataVolumeUsed = 900;
    d.quarleTrash = 9;
    d.fullDiskAccess = access;
    d.date = QDateTime::currentDateTimeUtc();
    return d;
}

const Volume volume{"Disk", 2000, 1000, 1030};

QList<std::pair<QString, qint64>> named(const QList<DiskPart>& parts) {
    QList<std::pair<QString, qint64>> out;
    for (const DiskPart& p : parts) out.append({p.name, p.bytes});
    return out;
}

QList<std::pair<QString, qint64>> named(const QList<SystemPart>& parts) {
    QList<std::pair<QString, qint64>> out;
    for (const SystemPart& p : parts) out.append({p.name, p.bytes});
    return out;
}

}  // namespace

TEST(Derive, DiskBarAndSystemDataAddUp) {
    const ScanData data = sample(true);
    ASSERT_EQ(data.home.bytes, 340);
    const ScanResult r = Scanner::derive(data, volume);
    // Developer: Library/Developer, Gradle's and Homebrew's caches and the Docker container, plus
    // /Library/Developer. Mail & Messages (none) and its 0 bytes are left out of the bar.
    EXPECT_EQ(named(r.strata), (QList<std::pair<QString, qint64>>{{"System Data", 524}, {"Apps", 200}, {"Photos", 100},
                                                                   {"Developer", 85}, {"Documents", 60}, {"Downloads", 20},
                                                                   {"Trash", 6}, {"Music & Movies", 5}}));
    EXPECT_EQ(r.systemTotal, 524);
    EXPECT_EQ(named(r.system), (QList<std::pair<QString, qint64>>{{"Not measured", 251}, {"macOS itself", 92},
                                                                   {"Shared files in /Library", 60}, {"Purgeable", 30},
                                                                   {"Apps' own data", 24}, {"Other files in your home", 15},
                                                                   {"iPhone and iPad backups", 12},
                                                                   {"iCloud Drive on this Mac", 11}, {"App caches", 9},
                                                                   {"Logs and crash reports", 8},
                                                                   {"Swap and sleep image", 8}, {"Temporary files", 4}}));
    EXPECT_TRUE(r.system[0].estimated);
    EXPECT_EQ(r.system[8].bucket, Bucket::now);  // App caches can be cleared
    EXPECT_EQ(r.system[8].paint, Paint::mint);

    // Without a data volume figure the system's own volumes are not guessed at.
    ScanData noData = data;
    noData.dataVolumeUsed.reset();
    const ScanResult r2 = Scanner::derive(noData, volume);
    EXPECT_FALSE(std::any_of(r2.system.begin(), r2.system.end(), [](const SystemPart& p) { return p.name == "macOS itself"; }));
    EXPECT_EQ(r2.system[0], (SystemPart{"Not measured", 251 + 92, Paint::stone, Bucket::keep, r.system[0].action, true}));

    // A disk whose slices explain more than is used: System Data is 0 and not shown.
    const ScanResult r3 = Scanner::derive(data, {"Disk", 500, 100, 100});
    EXPECT_EQ(r3.systemTotal, 0);
    EXPECT_EQ(r3.strata.first().name, "Apps");
    EXPECT_FALSE(std::any_of(r3.strata.begin(), r3.strata.end(), [](const DiskPart& p) { return p.name == "System Data"; }));
    EXPECT_FALSE(std::any_of(r3.system.begin(), r3.system.end(), [](const SystemPart& p) { return p.name == "Not measured"; }));
}

TEST(Derive, TrashRowAndSliceWithAndWithoutAccess) {
    const ScanResult with = Scanner::derive(sample(true), volume);
    const Finding* trash = findingOf(with, "trash");
    ASSERT_TRUE(trash);
    EXPECT_EQ(trash->bytes, 6);
    EXPECT_EQ(trash->removal, Removal::command({"empty-trash"}));

    for (std::optional<bool> access : {std::optional<bool>(false), std::optional<bool>()}) {
        const ScanResult without = Scanner::derive(sample(access), volume);
        trash = findingOf(without, "trash");
        ASSERT_TRUE(trash);
        EXPECT_EQ(trash->bytes, 9);  // Quarle's own items are more than could be measured
        EXPECT_TRUE(trash->removal.isNone());
        const auto slice = std::find_if(without.strata.begin(), without.strata.end(),
                                        [](const DiskPart& p) { return p.paint == Paint::stone; });
        ASSERT_NE(slice, without.strata.end());
        EXPECT_EQ(*slice, (DiskPart{"Trash (Quarle's)", 9, Paint::stone}));
        EXPECT_EQ(without.systemTotal, 521);
    }

    // An empty Trash is no row and no slice.
    ScanData empty = sample(true);
    empty.home.prune(Scanner::trashFiles(), 6);
    const ScanResult r = Scanner::derive(empty, volume);
    EXPECT_FALSE(findingOf(r, "trash"));
    EXPECT_FALSE(std::any_of(r.strata.begin(), r.strata.end(), [](const DiskPart& p) { return p.paint == Paint::stone; }));
}

TEST(Derive, FindingsOrderPlacesAndParts) {
    TreeBuilder t;
    t.at("Library/Caches/Yarn", 4).at("Library/Caches/CocoaPods", 4).at(".npm/_npx", 7);  // npm's second folder only
    t.at(".cache/pip", 3).at(".cache/uv", 2).at("Library/Logs", 0);
    t.at("Library/Caches/com.b", 1).at("Library/Caches/com.a", 1);
    t.at("Library/Developer/Xcode/DerivedData/App-abcdefghijklmnopqrstuvwxyzab", 50);
    t.at("Library/Application Support/MobileSync/Backup", 70);
    SpaceNode* derived = t.home.find(Home::at("Library/Developer/Xcode/DerivedData"));
    derived->kids[0].note = "partly locked";
    derived->note = "partly locked";
    ScanData d;
    d.home = t.home;
    d.fullDiskAccess = true;
    d.date = QDateTime::currentDateTimeUtc();
    Finding extra = Scanner::extraRow("installers");
    extra.bytes = 4;
    extra.parts = {{"a.dmg", Home::at("Downloads/a.dmg"), 4, {}, {}}};
    d.extras = {extra};
    const ScanResult r = Scanner::derive(d, volume);

    QStringList ids;
    for (const Finding& f : r.findings) ids.append(f.id);
    // now by size (yarn and cocoapods tie and keep the table's order), then call, then keep; the
    // logs folder of 0 bytes gives no row.
    EXPECT_EQ(ids, QStringList({"derived", "npm", "pip", "yarn", "cocoapods", "caches", "installers", "backups"}));
    EXPECT_EQ(r.total(Bucket::now), 50 + 7 + 5 + 4 + 4 + 2);
    EXPECT_EQ(r.total(Bucket::call), 4);
    EXPECT_EQ(r.total(Bucket::keep), 70);

    const Finding& dd = r.findings[0];
    EXPECT_TRUE(dd.partial);
    ASSERT_EQ(dd.parts.size(), 1);
    EXPECT_EQ(dd.parts[0].name, "App");  // Xcode's hash suffix dropped
    EXPECT_EQ(dd.paths, QStringList({Home::at("Library/Developer/Xcode/DerivedData")}));
    EXPECT_EQ(r.findings[1].place, "~/.npm/_npx");  // the folder that exists
    EXPECT_EQ(r.findings[2].place, "~/.cache/pip and 1 more");
    EXPECT_EQ(r.findings[2].parts.size(), 2);
    const Finding& caches = r.findings[5];
    EXPECT_EQ(caches.bytes, 2);  // Yarn and CocoaPods have rows of their own
    EXPECT_EQ(caches.parts[0].name, "com.b");  // equal sizes keep the tree's order
    EXPECT_EQ(r.findings[7].removal, Removal::none());
}

TEST(Derive, IsPureAndItsJsonKeepsFieldOrder) {
    const ScanData data = sample(true);
    const ScanResult a = Scanner::derive(data, volume);
    EXPECT_EQ(Scanner::derive(data, volume), a);
    const QByteArray text = encodeJson(a).toText();
    qsizetype last = -1;
    for (const char* key : {"volume", "home", "findings", "strata", "system", "systemTotal", "snapshots",
                            "fullDiskAccess", "files", "seconds", "date"}) {
        const qsizetype at = text.indexOf(QByteArray("\n  \"") + key + "\" :");  // the top level's keys
        EXPECT_GT(at, last) << key;
        last = at;
    }
    const auto parsed = parseJson(text);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->toObject().value("systemTotal").toInteger(), a.systemTotal);
}
