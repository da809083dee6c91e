#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>

#include "core/json.h"
#include "support/files.h"
#include "support/lists.h"
#include "support/mac_home.h"
#include "support/run_quarle.h"
#include "support/sandbox.h"

namespace {

QStringList ids(const QJsonValue& result) { return fieldOf(result.toObject().value("findings").toArray(), "id"); }
QStringList systemNames(const QJsonValue& result) { return fieldOf(result.toObject().value("system").toArray(), "name"); }

}  // namespace

TEST(Report, PipedItPrintsOnlyTheResult) {
    const QString root = Sandbox::scratch("machome");
    MacHome mac(root);
    mac.everything();
    const QByteArray env = "QUARLE_ROOT=" + Files::bytes(root);
    const Ran ran = runQuarle({"report"}, {env});
    ASSERT_EQ(ran.status, 0) << ran.err.toStdString();
    EXPECT_EQ(ran.err, QByteArray());
    const QString out = QString::fromUtf8(ran.out);
    EXPECT_FALSE(out.contains('\r'));  // no live line when piped
    EXPECT_FALSE(out.contains("Scanning"));
    EXPECT_TRUE(out.startsWith("Quarle report for " + root + "\n")) << out.toStdString();
    EXPECT_TRUE(out.contains("  App caches ")) << out.toStdString();
    // Without a verb Quarle reports too.
    const Ran bare = runQuarle({}, {env});
    EXPECT_EQ(bare.status, 0);
    EXPECT_TRUE(bare.out.startsWith("Quarle report for "));
}

TEST(Report, JsonOfAFixtureHomeAndOfTheDemonstration) {
    const QString root = Sandbox::scratch("machome");
    MacHome mac(root);
    mac.everything();
    const Ran ran = runQuarle({"report", "--json"}, {"QUARLE_ROOT=" + Files::bytes(root)});
    ASSERT_EQ(ran.status, 0) << ran.err.toStdString();
    const auto json = parseJson(ran.out);
    ASSERT_TRUE(json);
    EXPECT_EQ(json->toObject().value("home").toObject().value("bytes").toInteger(), mac.bytesUnder(""));
    // Another root is not this machine's home: its own Applications folder is looked at, and
    // nothing outside it (no temporary folder, no swap) is measured.
    EXPECT_TRUE(ids(*json).contains("macosinstallers"));
    EXPECT_FALSE(systemNames(*json).contains("Temporary files"));
    EXPECT_FALSE(systemNames(*json).contains("Swap and sleep image"));
    EXPECT_EQ(json->toObject().value("snapshots").toArray().size(), 0);

    const Ran demo = runQuarle({"report", "--json"}, {"QUARLE_DEMO=1"});
    ASSERT_EQ(demo.status, 0) << demo.err.toStdString();
    const auto demoJson = parseJson(demo.out);
    ASSERT_TRUE(demoJson);
    EXPECT_TRUE(ids(*demoJson).contains("trash"));

    EXPECT_EQ(runQuarle({"report", "--tree"}).status, 2);
}
