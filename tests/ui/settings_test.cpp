// Settings: a cancelled question about the keep period leaves the choice as it was; hidden rows are
// listed by title and come back; no tray, no switch; the welcome again; the appearance follows the model.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QTest>

#include "core/home.h"
#include "core/paths.h"
#include "model_fixture.h"
#include "support/files.h"
#include "support/sandbox.h"
#include "ui/pages/settings_page.h"

using namespace ModelTest;

TEST(SettingsPage, KeepPeriodQuestionHiddenRowsAndAppearance) {
    Sandbox::clearHome();
    Machine machine;
    Scripted script;
    const QString path = Home::at("Library/Caches/a");
    Files::makeDirs(Paths::parentOf(path));
    Files::write(path, 40'000);
    script.result->findings = {row("caches", Bucket::now, {part(path, Files::allocated(path), *machine.clock)})};
    auto model = scanned(script.services(machine));
    model->askClean(false);
    ASSERT_TRUE(waitFor([&] { return model->confirm().has_value(); }));
    model->perform(*model->confirm(), false);
    ASSERT_TRUE(settle(*model));
    *machine.clock = machine.clock->addDays(10);

    SettingsPage page(*model);
    EXPECT_EQ(page.keepDays()->currentText(), "7 days");
    // Three days would empty the entry now: the model asks first, and Cancel changes nothing.
    page.keepDays()->setCurrentIndex(page.keepDays()->findData(3));
    emit page.keepDays()->activated(page.keepDays()->currentIndex());
    ASSERT_TRUE(model->ask());
    EXPECT_EQ(model->ask()->title, "Keep things for 3 days?");
    model->dismissAsk();
    QTest::qWait(1);
    EXPECT_EQ(model->keepDays(), 7);
    EXPECT_EQ(page.keepDays()->currentText(), "7 days");

    EXPECT_EQ(page.setAside(), QStringList());
    model->hideRow(shown(*model, "caches"));
    ASSERT_TRUE(settle(*model));
    QTest::qWait(1);
    EXPECT_EQ(page.setAside(), QStringList{"Row caches"});
    for (QPushButton* b : page.findChildren<QPushButton*>())
        if (b->text() == "Show Again") b->click();
    EXPECT_TRUE(model->hiddenRows().isEmpty());

    // Without a tray (offscreen has none) the switch is off; the welcome sheet can be opened again.
    EXPECT_FALSE(page.tray()->isEnabled());
    for (QPushButton* b : page.findChildren<QPushButton*>())
        if (b->text() == "Show Welcome") b->click();
    EXPECT_TRUE(model->showWelcome());

    model->setAppearance(Appearance::night);
    QTest::qWait(1);
    EXPECT_EQ(page.appearance()->currentText(), "Night");
}
