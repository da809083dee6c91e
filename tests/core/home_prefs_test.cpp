#include <gtest/gtest.h>

#include "support/printers.h"

#include <QFile>
#include <QDir>
#include <QMap>
#include <memory>

#include <sys/stat.h>

#include "core/home.h"
#include "core/prefs.h"
#include "support/files.h"
#include "support/sandbox.h"

namespace {

QString decide(const QMap<QString, QString>& vars) {
    return Home::decide(
        [&](const char* name) -> std::optional<QString> {
            const auto it = vars.find(QString::fromLatin1(name));
            if (it == vars.end()) return std::nullopt;
            return *it;
        },
        "/home/me", "/work");
}

TEST(Home, RootThenDemoThenTheAccount) {
    EXPECT_EQ(decide({}), "/home/me");
    EXPECT_EQ(decide({{"QUARLE_ROOT", "/tmp/fake//home/"}}), "/tmp/fake/home");
    EXPECT_EQ(decide({{"QUARLE_ROOT", "~/fixtures/../mac"}}), "/home/me/mac");
    EXPECT_EQ(decide({{"QUARLE_ROOT", "rel/home"}}), "/work/rel/home");
    EXPECT_EQ(decide({{"QUARLE_ROOT", ""}}), "/home/me");
    EXPECT_EQ(decide({{"QUARLE_DEMO", ""}}), Home::demoPath);
    EXPECT_EQ(decide({{"QUARLE_ROOT", ""}, {"QUARLE_DEMO", "1"}}), Home::demoPath);
    EXPECT_EQ(decide({{"QUARLE_ROOT", "/r"}, {"QUARLE_DEMO", "1"}}), "/r");
}

TEST(Home, TheTestsRunInTheirSandbox) {
    EXPECT_EQ(Home::path(), Sandbox::home());
    EXPECT_FALSE(Home::isFake());
    EXPECT_EQ(Home::at("Library/Caches"), Sandbox::home() + "/Library/Caches");
    EXPECT_TRUE(Prefs::storePath().startsWith(Sandbox::home() + "/.config/Quarle/"));
    EXPECT_EQ(Home::dataFolder(), Sandbox::home() + "/.local/share");
    EXPECT_EQ(Home::trashFolder(), Sandbox::home() + "/.local/share/Trash");
}

TEST(Prefs, ValuesPersistAndBadOnesFallBack) {
    Prefs::setValue("keepDays", 30);
    Prefs::setValue("hiddenRows", QStringList{"logs", "caches"});
    EXPECT_EQ(Prefs::integer("keepDays", 7), 30);
    EXPECT_EQ(Prefs::stringList("hiddenRows"), QStringList({"logs", "caches"}));
    Prefs::setValue("keepDays", "soon");
    EXPECT_EQ(Prefs::integer("keepDays", 7), 7);
    Prefs::setValue("keepDays", "99999999999");  // never wrapped around into another number
    EXPECT_EQ(Prefs::integer("keepDays", 7, 0, Prefs::maxKeepDays), Prefs::maxKeepDays);
    Prefs::setValue("keepDays", "-5");
    EXPECT_EQ(Prefs::integer("keepDays", 7, 0, Prefs::maxKeepDays), 7);
    EXPECT_EQ(Prefs::integer("missing", 7), 7);
    EXPECT_TRUE(Prefs::stringList("missing").isEmpty());
    EXPECT_TRUE(QFile::exists(Prefs::storePath()));
}

TEST(Prefs, ASandboxedStoreStartsEmptyAndADamagedOneIsKeptAside) {
    const QString folder = Sandbox::scratch("prefs");
    const QString file = folder + "/quarle.sandbox.conf";
    Files::writeText(file, "[General]\nkeepDays=3\n");
    std::unique_ptr<QSettings> kept(Prefs::openStore(file, false));
    EXPECT_EQ(kept->value("keepDays").toInt(), 3);
    kept.reset();
    std::unique_ptr<QSettings> wiped(Prefs::openStore(file, true));
    EXPECT_FALSE(wiped->contains("keepDays"));
    wiped.reset();

    const QString damaged = folder + "/damaged.conf";
    const QByteArray garbage("[General\x00\xff\n=\n[[[\nkeepDays=\"unterminated\n\xfe\xfe", 40);
    Files::writeText(damaged, garbage);
    std::unique_ptr<QSettings> fresh(Prefs::openStore(damaged, false));
    fresh->setValue("keepDays", 9);
    fresh->sync();
    EXPECT_EQ(fresh->status(), QSettings::NoError);
    const QStringList aside = QDir(folder).entryList({"damaged.conf.damaged-*"});
    ASSERT_EQ(aside.size(), 1);  // the garbage is kept, byte for byte
    QFile old(folder + "/" + aside.first());
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    EXPECT_EQ(old.readAll(), garbage);
    fresh.reset();
    std::unique_ptr<QSettings> again(Prefs::openStore(damaged, false));
    EXPECT_EQ(again->value("keepDays").toInt(), 9);  // and new preferences are saved

    // A FIFO in its place would block every reader: it is set aside like any damaged file.
    const QString fifo = folder + "/fifo.conf";
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    std::unique_ptr<QSettings> unblocked(Prefs::openStore(fifo, false));
    EXPECT_FALSE(unblocked->contains("keepDays"));
    EXPECT_EQ(QDir(folder).entryList({"fifo.conf.damaged-*"}, QDir::Files | QDir::System).size(), 1);
}

}  // namespace
