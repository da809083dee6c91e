#include <gtest/gtest.h>

#include "apps/leftover_sweep.h"
#include "apps/leftovers.h"

using Leftovers::AppIdentity;
using Leftovers::Match;

namespace {

AppIdentity app(const QString& name, const QString& bundleID, const QString& team = {}) {
    return {name, bundleID, team};
}

// The verdict for one entry in Preferences against one app whose vendor nobody else shares.
std::optional<Match> inPreferences(const QString& name, const AppIdentity& a) {
    return Leftovers::match(name, QStringLiteral("Preferences"), a, false);
}

Walker::Entry folder(const QString& name) {
    Walker::Entry e;
    e.name = name;
    e.isDir = true;
    return e;
}

}  // namespace

TEST(LeftoverNames, StemVendorWordsAndTheShapeOfABundleID) {
    EXPECT_EQ(Leftovers::stem("com.example.tool.savedState"), "com.example.tool");
    EXPECT_EQ(Leftovers::stem("Tool.log.plist"), "Tool.log") << "only one suffix comes off";
    EXPECT_EQ(Leftovers::stem("com.example.tool.PLIST"), "com.example.tool.PLIST") << "case-sensitive";

    EXPECT_EQ(Leftovers::vendor("com.example.editor"), "com.example");
    EXPECT_EQ(Leftovers::vendor("com.Example.Editor.helper"), "com.Example");
    EXPECT_EQ(Leftovers::vendor("com.example"), std::nullopt);
    EXPECT_EQ(Leftovers::vendor("com..example"), std::nullopt) << "empty labels are dropped";

    EXPECT_EQ(Leftovers::words("Night Owl-2 (Beta)"), (QStringList{"night", "owl", "2", "beta"}));
    // A decomposed accent, as file names often come, stays inside its word and equals the composed one.
    EXPECT_EQ(Leftovers::words(QString::fromUtf8("Cafe\xCC\x81 Bar")), Leftovers::words(QString::fromUtf8("Caf\xC3\xA9 bar")));

    EXPECT_TRUE(Leftovers::looksLikeBundleID("com.example.tool.plist"));
    EXPECT_TRUE(Leftovers::looksLikeBundleID("ai.example.chat.savedState"));
    EXPECT_FALSE(Leftovers::looksLikeBundleID("com.example.plist")) << "two labels once the suffix is gone";
    EXPECT_FALSE(Leftovers::looksLikeBundleID("group.com.example.shared"));
    EXPECT_FALSE(Leftovers::looksLikeBundleID("ABCDE12345.com.example.shared"));
    EXPECT_FALSE(Leftovers::looksLikeBundleID("Something Else"));

    EXPECT_EQ(Leftovers::displayName("/Applications/Editor.app"), "Editor");
    EXPECT_EQ(Leftovers::displayName("/Applications/My.Tool.app"), "My.Tool");
}

TEST(LeftoverRules, BundleIDMatchesItsDotAndHyphenFormsButNotALongerWord) {
    const AppIdentity editor = app("Editor", "com.example.Editor");
    const Match exact{Confidence::sure, "Bundle ID matches (com.example.Editor)", 1018};
    EXPECT_EQ(inPreferences("com.example.Editor.plist", editor), exact);
    EXPECT_EQ(Leftovers::match("com.example.editor-helper", "Caches", editor, false), exact) << "compared without case";
    EXPECT_EQ(inPreferences("com.example.editors", editor),
              (Match{Confidence::likely, "Same developer's ID (com.example)", 511}));
    EXPECT_EQ(inPreferences("com.example.Editor.plist", app("Editor", "")), std::nullopt)
        << "an app without an identifier matches nothing, not even by name";
}

TEST(LeftoverRules, SigningTeamOnlyInGroupContainersAndDeveloperOnlyForAVendorOfItsOwn) {
    const AppIdentity signedApp = app("Editor", "com.example.Editor", "ABCDE12345");
    const Match team{Confidence::sure, "Made by the same signing team (ABCDE12345)", 900};
    EXPECT_EQ(Leftovers::match("ABCDE12345.com.example.shared", "Group Containers", signedApp, false), team);
    EXPECT_EQ(Leftovers::match("ABCDE12345.com.example.shared", "Application Support", signedApp, false), std::nullopt);
    EXPECT_EQ(Leftovers::match("ABCDE12345.com.example.shared", "Group Containers", app("Editor", "com.example.Editor"), false),
              std::nullopt)
        << "an unsigned app has no team";

    const AppIdentity one = app("One", "com.example.one");
    EXPECT_EQ(inPreferences("com.example.three.plist", one), (Match{Confidence::likely, "Same developer's ID (com.example)", 511}));
    EXPECT_EQ(Leftovers::match("com.example.three.plist", "Preferences", one, true), std::nullopt);
    EXPECT_EQ(inPreferences("com.example", one), std::nullopt) << "the vendor alone is no item of the app";
    EXPECT_EQ(inPreferences("com.google.anything", app("Drive", "com.google.drive")), std::nullopt);
    EXPECT_EQ(inPreferences("io.github.someone.tool", app("Thing", "io.github.other.thing")), std::nullopt);

    // Vendors are shared without regard to case, as the rule compares them.
    EXPECT_EQ(Leftovers::sharedVendors({one, app("Two", "com.Example.two"), app("X", "net.solo.x"), app("Y", "")}),
              (QSet<QString>{"com.example"}));
}

TEST(LeftoverRules, NameRuleNeedsTheWholeNameAsARunOfWordsAndFourLetters) {
    const AppIdentity owl = app("Night Owl", "net.nightowl.app");
    const auto inSupport = [&](const QString& name, const AppIdentity& a) {
        return Leftovers::match(name, "Application Support", a, false);
    };
    EXPECT_EQ(inSupport("Night Owl", owl), (Match{Confidence::likely, "Named after the app", 316}));
    EXPECT_EQ(inSupport("night-owl.plist", owl), (Match{Confidence::likely, "Named after the app", 316}));
    EXPECT_EQ(inSupport("Old Night Owl Backups", owl), (Match{Confidence::likely, "Name contains \"Night Owl\"", 114}));
    EXPECT_EQ(inSupport("Night Big Owl", owl), std::nullopt) << "the words must follow one another";
    EXPECT_EQ(inSupport("NightOwl", owl), std::nullopt) << "one word is not the two of the name";
    EXPECT_EQ(inSupport("Nightowlish", owl), std::nullopt);

    EXPECT_EQ(inSupport("Go", app("Go", "dev.golang.go")), std::nullopt) << "short names never match by name";
    EXPECT_EQ(inSupport("Go Tools", app("Go", "dev.golang.go")), std::nullopt);
    EXPECT_EQ(inSupport("Mail", app("Mail", "com.example.mail")), (Match{Confidence::likely, "Named after the app", 308}));
}

TEST(LeftoverRules, OwnerTakesTheStrongestMatchAndTiesStayWithTheEarlierApp) {
    const QList<AppIdentity> apps{app("Editor", "com.example.Editor"), app("Editor Pro", "com.example.Editor.pro"),
                                  app("Twin", "org.twin.a"), app("Twin", "org.twin.b")};
    const QSet<QString> shared = Leftovers::sharedVendors(apps);

    auto found = Leftovers::owner("com.example.Editor.pro.plist", "Preferences", apps, shared);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->first, apps[1]) << "the longer identifier is the closer match";
    EXPECT_EQ(found->second.strength, 1022);

    found = Leftovers::owner("Twin", "Application Support", apps, shared);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->first, apps[2]);

    found = Leftovers::owner("Editor Pro", "Application Support", apps, shared);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->first, apps[1]) << "named after Editor Pro beats containing Editor";

    EXPECT_FALSE(Leftovers::owner("com.example.Other", "Preferences", apps, shared)) << "com.example is shared";
    EXPECT_FALSE(Leftovers::owner("Anything", "Caches", {}, {}));
}

TEST(LeftoverSweep, OrphansNeedEvidenceAndNoInstalledVendorOrKnownApp) {
    const auto group = [](const QString& key, const QString& place) {
        Leftovers::Sweep sweep;
        Leftovers::take(folder(key), place, "/h/Library/" + place, {}, sweep);
        return sweep.orphans.value(0);
    };
    const QList<Leftovers::OrphanGroup> groups{
        group("net.example.prefs", "Preferences"),         group("net.example.byhost", "Preferences/ByHost"),
        group("net.example.container", "Containers"),      group("net.example.saved", "Saved Application State"),
        group("net.example.http", "HTTPStorages"),         group("net.example.cache", "Caches"),
        group("net.example.logs", "Logs"),                 group("net.example.group", "Group Containers"),
        group("com.vendor.helper", "Preferences"),         group("org.known.app", "Containers")};
    const QSet<QString> installed = Leftovers::installedVendors({app("Main", "com.Vendor.main")});
    const auto known = [](const QString& id) { return id == "org.known.app"; };

    QStringList kept;
    for (const Orphan& o : Leftovers::keptOrphans(groups, installed, known)) {
        EXPECT_EQ(o.name, o.bundleID);
        kept.append(o.name);
    }
    EXPECT_EQ(kept, (QStringList{"net.example.prefs", "net.example.byhost", "net.example.container", "net.example.saved",
                                 "net.example.http"}));
}
