// The tick rules: single parts, rows whose parts are all kept by default, the last part unticked,
// parts never cleared, "Select suggested", hidden rows and the clock behind "recent".

#include <gtest/gtest.h>

#include "core/home.h"
#include "core/prefs.h"
#include "model_fixture.h"
#include "support/sandbox.h"

namespace {

using namespace ModelTest;

class Ticks : public ::testing::Test {
protected:
    void SetUp() override {
        Sandbox::clearHome();
        Prefs::setValue("neverClear", QStringList());
        Prefs::setValue("hiddenRows", QStringList());
        const QDateTime now = *machine.clock;
        const QString caches = Home::at("Library/Caches/");
        const QString derived = Home::at("Library/Developer/Xcode/DerivedData/");
        script.result->findings = {
            row("single", Bucket::now, {part(caches + "only", 100, now)}),
            row("archives", Bucket::now, {part(caches + "a1", 10, now, 2), part(caches + "a2", 20, now, 3)}),
            row("derived", Bucket::now,
                {part(derived + "recent", 30, now, 2), part(derived + "old1", 40, now, 30),
                 part(derived + "old2", 50, now, 60)},
                Removal::trash(), true),
            row("cmd", Bucket::now, {part(caches + "s1", 5, now), part(caches + "s2", 5, now)},
                Removal::command({"true"}), true),
            row("listed", Bucket::keep, {part(caches + "l", 5, now)}, Removal::none()),
            row("later", Bucket::call, {part(caches + "c", 7, now)}),
        };
    }

    std::unique_ptr<Model> started() { return scanned(script.services(machine)); }

    Machine machine;
    Scripted script;
};

TEST_F(Ticks, ARowWithOnePartTogglesAsAWhole) {
    const auto model = started();
    const Finding single = shown(*model, "single");
    EXPECT_EQ(model->tickState(single), TickState::all);
    const Picks before = model->picks();
    model->togglePart(single, single.parts.first());
    EXPECT_EQ(model->picks(), before) << "a lone part's box does nothing";
    EXPECT_EQ(model->tickState(single), TickState::all);
    model->toggle(single);
    EXPECT_EQ(model->tickState(single), TickState::off);
    EXPECT_TRUE(model->unticked().contains("single"));
    model->toggle(single);
    EXPECT_EQ(model->tickState(single), TickState::all);
    EXPECT_FALSE(model->unticked().contains("single"));
}

TEST_F(Ticks, ARowWhosePartsAreAllKeptStartsOffAndTickingItChoosesThemAll) {
    const auto model = started();
    const Finding archives = shown(*model, "archives");
    EXPECT_TRUE(model->ticked().contains("archives")) << "a Clear now row";
    EXPECT_EQ(model->tickState(archives), TickState::off) << "both archives are from the last 7 days";
    EXPECT_FALSE(ids(model->clearing(false)).contains("archives"));
    model->askClean(archives);
    EXPECT_FALSE(model->confirm());
    EXPECT_EQ(model->toast(), std::optional<QString>("Nothing in Row archives is ticked."));

    model->toggle(archives);
    EXPECT_EQ(model->tickState(archives), TickState::all);
    EXPECT_EQ(model->picks().on, (QSet<QString>{archives.parts[0].path, archives.parts[1].path}));
    model->askClean(archives);
    ASSERT_TRUE(model->confirm());
    EXPECT_EQ(model->confirm()->bytes, 30);
    EXPECT_EQ(model->confirm()->title, "Row archives");
}

TEST_F(Ticks, UntickingTheLastChosenPartUnticksTheRowAndClearsItsOverrides) {
    const auto model = started();
    const Finding derived = shown(*model, "derived");
    const Part recent = derived.parts[0], old1 = derived.parts[1], old2 = derived.parts[2];
    EXPECT_EQ(paths(model->chosen(derived)), (QStringList{old1.path, old2.path}));
    EXPECT_EQ(model->tickState(derived), TickState::some);
    model->togglePart(derived, recent);  // chosen against the default
    EXPECT_EQ(model->tickState(derived), TickState::all);
    model->togglePart(derived, recent);
    model->togglePart(derived, old1);
    EXPECT_EQ(paths(model->chosen(derived)), QStringList{old2.path});
    model->togglePart(derived, old2);
    EXPECT_EQ(model->tickState(derived), TickState::off);
    EXPECT_FALSE(model->ticked().contains("derived"));
    EXPECT_TRUE(model->unticked().contains("derived"));
    EXPECT_TRUE(model->picks().off.isEmpty());
    EXPECT_TRUE(model->picks().on.isEmpty());

    // A click on a part of an unticked row chooses exactly that part.
    model->togglePart(derived, recent);
    EXPECT_TRUE(model->ticked().contains("derived"));
    EXPECT_EQ(paths(model->chosen(derived)), QStringList{recent.path});
    const QList<Finding> clearing = model->clearing(true);
    ASSERT_EQ(ids(clearing), (QStringList{"derived", "cmd"}));
    EXPECT_EQ(clearing[0].paths, QStringList{recent.path});
    EXPECT_EQ(clearing[0].bytes, 30);
    EXPECT_TRUE(clearing[0].partial);

    model->pickAll(derived, false);
    EXPECT_EQ(model->tickState(derived), TickState::off);
    model->pickAll(derived, true);
    EXPECT_EQ(model->tickState(derived), TickState::all);
}

TEST_F(Ticks, APartNeverClearedStaysOutWhateverTheRowDoesAndAcrossRestarts) {
    const QString old1 = shown(*started(), "derived").parts[1].path;
    {
        const auto model = started();
        const Finding derived = shown(*model, "derived");
        model->neverClear(derived.parts[1]);
        EXPECT_EQ(model->toast(), std::optional<QString>("old1 will never be cleared. Settings can change that."));
        EXPECT_EQ(Prefs::stringList("neverClear"), QStringList{old1});
        const auto left = [&] { return !paths(model->chosen(derived)).contains(old1); };
        EXPECT_TRUE(left());
        model->pickAll(derived, true);
        EXPECT_TRUE(left()) << "pickAll";
        model->togglePart(derived, derived.parts[1]);  // now in `on` and in `never`
        EXPECT_TRUE(model->picks().on.contains(old1));
        EXPECT_TRUE(left()) << "never wins over on";
        model->toggle(derived);
        model->toggle(derived);
        EXPECT_TRUE(left()) << "a row toggle";
        model->selectSuggested(false);
        EXPECT_TRUE(left()) << "Select suggested";
        EXPECT_EQ(model->tickState(derived), TickState::some);
    }
    const auto restarted = started();
    EXPECT_EQ(restarted->picks().never, QSet<QString>{old1});
    EXPECT_TRUE(restarted->picks().on.isEmpty());
    const Finding derived = shown(*restarted, "derived");
    EXPECT_FALSE(paths(restarted->chosen(derived)).contains(old1));
    restarted->allowClear(old1);
    EXPECT_TRUE(paths(restarted->chosen(derived)).contains(old1));
    EXPECT_TRUE(Prefs::stringList("neverClear").isEmpty());
}

TEST_F(Ticks, CommandRowsAreWholeAndListedRowsCannotBeTicked) {
    const auto model = started();
    const Finding cmd = shown(*model, "cmd");
    EXPECT_EQ(model->tickState(cmd), TickState::all);
    const Picks before = model->picks();
    model->togglePart(cmd, cmd.parts.first());
    EXPECT_EQ(model->picks(), before);
    const Finding listed = shown(*model, "listed");
    model->toggle(listed);
    model->pickAll(listed, false);
    EXPECT_FALSE(model->ticked().contains("listed"));
    model->askClean(listed);
    EXPECT_FALSE(model->confirm());
    EXPECT_EQ(ids(model->suggested(true)), (QStringList{"derived", "cmd"}));
}

TEST_F(Ticks, SelectSuggestedTicksTheClearNowRowsAndDropsTheirPartChoices) {
    const auto model = started();
    const Finding derived = shown(*model, "derived");
    model->toggle(shown(*model, "single"));
    model->toggle(shown(*model, "later"));
    model->togglePart(derived, derived.parts[0]);
    EXPECT_EQ(model->tickState(derived), TickState::all);
    model->selectSuggested(true);  // the Developer page's button
    EXPECT_FALSE(model->ticked().contains("single"));
    EXPECT_EQ(model->tickState(derived), TickState::some);
    model->selectSuggested(false);
    EXPECT_TRUE(model->ticked().contains("single"));
    EXPECT_TRUE(model->ticked().contains("later")) << "a row the user ticked stays ticked";
    EXPECT_EQ(ids(model->clearing(false)), (QStringList{"single", "derived", "cmd", "later"}));
}

TEST_F(Ticks, AHiddenRowIsRememberedUntilSettingsBringsItBack) {
    {
        const auto model = started();
        model->setFocus(QString("single"));
        model->hideRow(shown(*model, "single"));
        EXPECT_EQ(model->focus(), std::nullopt) << "hiding the focused row leaves no row focused";
        EXPECT_FALSE(model->ticked().contains("single"));
        EXPECT_EQ(model->toast(), std::optional<QString>("Row single won't be shown again. Settings can bring it back."));
        ASSERT_TRUE(waitFor([&] { return shown(*model, "single").id.isEmpty(); }));
        EXPECT_EQ(Prefs::stringList("hiddenRows"), QStringList{"single"});
    }
    const auto model = started();
    EXPECT_EQ(model->hiddenRows(), QSet<QString>{"single"});
    EXPECT_TRUE(shown(*model, "single").id.isEmpty());
    model->showRow("single");
    ASSERT_TRUE(waitFor([&] { return !shown(*model, "single").id.isEmpty(); }));
    EXPECT_TRUE(model->ticked().contains("single"));
    EXPECT_TRUE(Prefs::stringList("hiddenRows").isEmpty());
}

TEST_F(Ticks, AFocusedRowThatDisappearsHandsTheFocusToTheFirstRow) {
    const auto model = started();
    model->setFocus(QString("later"));
    script.result->findings.removeLast();
    model->rederive();
    ASSERT_TRUE(waitFor([&] { return shown(*model, "later").id.isEmpty(); }));
    EXPECT_EQ(model->focus(), std::optional<QString>("single"));
}

TEST_F(Ticks, RecentMeansRecentByTheModelsClock) {
    const auto model = started();
    const Finding derived = shown(*model, "derived");
    EXPECT_FALSE(model->isChosen(derived, derived.parts[0]));
    *machine.clock = machine.clock->addDays(6);  // the recent project is now 8 days old
    EXPECT_TRUE(model->isChosen(derived, derived.parts[0]));
    EXPECT_EQ(model->tickState(derived), TickState::all);
}

}  // namespace
