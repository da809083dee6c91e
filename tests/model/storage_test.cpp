// The Storage page through the model: columns, back and forward, folders listed on demand, the
// clearable figure per folder and moving one item to the Trash.

#include <gtest/gtest.h>

#include "core/home.h"
#include "core/paths.h"
#include "model_fixture.h"
#include "support/files.h"
#include "support/lists.h"
#include "support/sandbox.h"

namespace {

using namespace ModelTest;

SpaceNode node(const QString& path, qint64 bytes, QList<SpaceNode> kids = {}, bool isDir = true) {
    return {Paths::lastComponent(path), path, bytes, isDir, {}, {}, std::move(kids)};
}

QStringList columnPaths(const Model& model) { return fieldOf(model.columns(), &SpaceNode::path); }

class Storage : public ::testing::Test {
protected:
    // Home: Projects (listed) holding app and lib; Movies and Music, real folders the scan did
    // not descend into; a file.
    void SetUp() override {
        Sandbox::clearHome();
        home = Home::path();
        Files::makeDirs(home + "/Movies/clips");
        Files::write(home + "/Movies/clips/a.mov", 40'000);
        Files::write(home + "/Movies/trailer.mov", 20'000);
        Files::makeDirs(home + "/Music");
        Files::write(home + "/Music/song.mp3", 8'000);
        Files::makeDirs(home + "/Projects/app");
        Files::write(home + "/Projects/app/big.bin", 30'000);
        script.result->home =
            node(home, 1'000'000,
                 {node(home + "/Projects", 500'000,
                       {node(home + "/Projects/app", 300'000, {node(home + "/Projects/app/big.bin", 300'000, {}, false)}),
                        node(home + "/Projects/lib", 200'000)}),
                  node(home + "/Movies", 300'000), node(home + "/Music", 100'000),
                  node(home + "/notes.txt", 100'000, {}, false)});
    }

    std::unique_ptr<Model> started() {
        auto model = scanned(script.services(machine));
        model->setPage(Page::space);
        return model;
    }

    const SpaceNode& kid(const Model& model, int column, const QString& name) {
        for (const SpaceNode& k : model.columns().at(column).kids)
            if (k.name == name) return k;
        ADD_FAILURE() << "no " << name.toStdString() << " in column " << column;
        return model.columns().first();
    }

    Machine machine;
    Scripted script;
    QString home;
};

TEST_F(Storage, OpeningFoldersAddsColumnsAndKeysMoveTheSelection) {
    const auto model = started();
    EXPECT_EQ(columnPaths(*model), QStringList{home});
    EXPECT_EQ(model->spaceSelection(), std::nullopt);
    model->spaceStep(1);  // nothing selected: the first item
    EXPECT_EQ(model->spaceSelection()->name, "Projects");
    EXPECT_EQ(columnPaths(*model), (QStringList{home, home + "/Projects"}));
    EXPECT_FALSE(model->canGoUp());
    model->spaceStep(-1);
    EXPECT_EQ(model->spaceSelection()->name, "Projects") << "the top stays the top";
    EXPECT_EQ(model->spaceBack().size(), 1) << "a step that goes nowhere is not recorded";
    model->spaceIn();
    EXPECT_EQ(model->spaceSelection()->name, "app");
    EXPECT_EQ(model->selectionColumn(), 1);
    EXPECT_TRUE(model->canGoUp());
    model->spaceStep(5);
    EXPECT_EQ(model->spaceSelection()->name, "lib") << "the bottom stays the bottom";
    model->spaceOut();
    EXPECT_EQ(model->spaceSelection()->name, "Projects");
    EXPECT_EQ(columnPaths(*model), (QStringList{home, home + "/Projects"}));
    model->spaceStep(3);
    EXPECT_EQ(model->spaceSelection()->name, "notes.txt");
    EXPECT_EQ(columnPaths(*model), QStringList{home}) << "a file opens no column";

    model->spaceReveal(home + "/Projects/app/big.bin");
    EXPECT_EQ(columnPaths(*model), (QStringList{home, home + "/Projects", home + "/Projects/app"}));
    EXPECT_EQ(model->spaceSelection()->name, "big.bin");
}

TEST_F(Storage, TheHundredAndFirstStepDropsTheOldestAndBackStopsAfterAHundred) {
    const auto model = started();
    const SpaceNode projects = kid(*model, 0, "Projects"), music = kid(*model, 0, "Music");
    model->open(projects, 0, true);  // step 1 records the start
    const SpaceStep afterFirst{model->columns(), model->spaceSelection()};
    for (int i = 2; i <= 101; ++i) model->open(i % 2 ? projects : music, 0, true);
    ASSERT_EQ(model->spaceBack().size(), 100);
    EXPECT_EQ(model->spaceBack().first(), afterFirst) << "the starting point was dropped";
    for (int i = 0; i < 100; ++i) model->spaceGoBack();
    EXPECT_TRUE(model->spaceBack().isEmpty());
    EXPECT_EQ(model->spaceForward().size(), 100);
    EXPECT_EQ(model->spaceSelection(), afterFirst.selection);
    model->spaceGoBack();
    EXPECT_EQ(model->spaceSelection(), afterFirst.selection) << "nothing further back";
    model->spaceGoForward();
    EXPECT_EQ(model->spaceBack().size(), 1);
    EXPECT_EQ(model->spaceForward().size(), 99);
    model->open(music, 0, true);
    EXPECT_TRUE(model->spaceForward().isEmpty()) << "a new step ends the way forward";
    model->open(projects, 0, false);
    EXPECT_EQ(model->spaceBack().size(), 2) << "an unrecorded step leaves the stacks alone";
}

TEST_F(Storage, AFolderTheScanDidNotListIsListedAndOnlyWhileItIsStillSelected) {
    const auto model = started();
    model->landings().hold(Job::listing);
    model->open(kid(*model, 0, "Movies"), 0, true);
    EXPECT_TRUE(model->columnLoading());
    ASSERT_TRUE(waitFor([&] { return model->landings().waiting(Job::listing) == 1; }));
    model->open(kid(*model, 0, "Music"), 0, true);
    ASSERT_TRUE(waitFor([&] { return model->landings().waiting(Job::listing) == 2; }));

    model->landings().release(Job::listing, 0);  // Movies, after the user moved on to Music
    EXPECT_TRUE(model->scan()->home.find(home + "/Movies")->kids.isEmpty()) << "stored nowhere";
    EXPECT_EQ(columnPaths(*model), QStringList{home}) << "and no column";
    EXPECT_TRUE(model->columnLoading()) << "Music is still being listed";

    model->landings().release(Job::listing, 0);
    EXPECT_FALSE(model->columnLoading());
    EXPECT_EQ(columnPaths(*model), (QStringList{home, home + "/Music"}));
    ASSERT_EQ(model->columns().last().kids.size(), 1);
    EXPECT_EQ(model->columns().last().kids.first().name, "song.mp3");
    EXPECT_EQ(model->scan()->home.find(home + "/Music")->kids.size(), 1);
}

TEST_F(Storage, TrashingAnItemAsksAfterTheSafetyCheckAndTheColumnsShowTheSpaceFreed) {
    const auto model = started();
    model->open(kid(*model, 0, "Movies"), 0, true);
    ASSERT_TRUE(waitFor([&] { return !model->columnLoading(); }));
    ASSERT_EQ(columnPaths(*model), (QStringList{home, home + "/Movies"}));
    model->open(kid(*model, 1, "clips"), 1, true);  // listed on demand too
    ASSERT_TRUE(waitFor([&] { return !model->columnLoading(); }));
    EXPECT_EQ(columnPaths(*model), (QStringList{home, home + "/Movies", home + "/Movies/clips"}));
    model->spaceStep(1);
    ASSERT_EQ(model->spaceSelection()->name, "trailer.mov");

    Files::makeDirs(home + "/Library");
    model->askTrash(node(home + "/Library", 5));
    EXPECT_FALSE(model->confirm());
    EXPECT_EQ(model->toast(), std::optional<QString>("Protected: ~/Library"));

    // Derivations wait: the scripted one knows nothing of the removal.
    model->landings().hold(Job::derive);
    const auto trashSelection = [&] {
        model->trashCurrent();
        ASSERT_TRUE(model->confirm());
        EXPECT_EQ(model->confirm()->title, model->spaceSelection()->name);
        EXPECT_EQ(model->confirm()->paths, QStringList{model->spaceSelection()->path});
        EXPECT_TRUE(performed(*model).ok());
    };
    const qint64 movies = model->scan()->home.find(home + "/Movies")->bytes;
    const qint64 trailer = model->spaceSelection()->bytes;
    trashSelection();
    EXPECT_FALSE(Files::exists(home + "/Movies/trailer.mov"));
    EXPECT_EQ(model->scan()->home.find(home + "/Movies/trailer.mov"), nullptr);
    EXPECT_EQ(model->scan()->home.find(home + "/Movies")->bytes, movies - trailer);
    EXPECT_EQ(model->columns().at(1).kids.size(), 1) << "only clips is left";
    EXPECT_EQ(model->spaceSelection(), std::nullopt);

    model->open(kid(*model, 1, "clips"), 1, true);
    EXPECT_FALSE(model->columnLoading()) << "listed before";
    trashSelection();
    EXPECT_EQ(columnPaths(*model), (QStringList{home, home + "/Movies"}));
    // Going back to where clips was open: a folder that no longer exists ends the columns there.
    model->spaceGoBack();
    model->spaceGoBack();
    EXPECT_EQ(columnPaths(*model), (QStringList{home, home + "/Movies"}));
    EXPECT_EQ(model->spaceSelection(), std::nullopt);
    model->landings().letGo(Job::derive);
    model->landings().releaseAll(Job::derive);
}

TEST_F(Storage, ClearableFiguresFollowTheTicksUpToTheHomeFolder) {
    const QString cache = Home::at("Library/Caches/com.example");
    script.result->findings = {row("caches", Bucket::now,
                                   {part(cache + "/a", 100, *machine.clock), part(cache + "/b", 50, *machine.clock)}),
                               row("later", Bucket::call, {part(Home::at("Downloads/x.dmg"), 7, *machine.clock)})};
    const auto model = started();
    EXPECT_EQ(model->clearableIn().value(cache), 150);
    EXPECT_EQ(model->clearableIn().value(cache + "/a"), 100);
    EXPECT_EQ(model->clearableIn().value(Home::at("Library")), 150);
    EXPECT_EQ(model->clearableIn().value(home), 150);
    EXPECT_FALSE(model->clearableIn().contains(Home::at("Downloads")));
    model->togglePart(shown(*model, "caches"), shown(*model, "caches").parts[0]);
    EXPECT_EQ(model->clearableIn().value(home), 50);
    model->toggle(shown(*model, "later"));
    EXPECT_EQ(model->clearableIn().value(home), 57);
    EXPECT_EQ(model->clearableIn().value(Home::at("Downloads")), 7);
}

}  // namespace
