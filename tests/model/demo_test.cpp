// The demonstration machine through the model: shown at once, and every action ends in its toast.

#include <gtest/gtest.h>

#include "core/home.h"
#include "core/prefs.h"
#include "demo/demo.h"
#include "model_fixture.h"
#include "support/files.h"
#include "support/sandbox.h"

namespace {

using namespace ModelTest;

TEST(Demo, TheInventedMacIsShownAtOnceAndNothingIsEverRemoved) {
    Sandbox::clearHome();
    Prefs::sandboxed();  // decided before the variable is set, so this program keeps its store
    Machine machine;
    qputenv("QUARLE_DEMO", "1");
    Model model(machine.services());
    qunsetenv("QUARLE_DEMO");
    ASSERT_TRUE(model.demo());
    model.start();
    EXPECT_FALSE(model.scanning());
    ASSERT_TRUE(model.scan());
    EXPECT_EQ(model.volume(), Demo::volume()) << "the demonstration's disk, not the test's";
    EXPECT_FALSE(model.ticked().isEmpty());
    EXPECT_TRUE(model.appsLoaded());
    EXPECT_FALSE(model.apps().isEmpty());
    EXPECT_EQ(model.appFocus(), std::optional<QString>(model.apps().first().path));
    EXPECT_FALSE(model.loginItems().isEmpty());
    EXPECT_FALSE(model.history().isEmpty());
    model.rescan(true);
    EXPECT_FALSE(model.scanning()) << "the demonstration never scans";

    model.askClean(false);
    ASSERT_TRUE(model.confirm());
    EXPECT_EQ(performed(model).toast, "Demo Mac: nothing was removed.");
    EXPECT_EQ(model.toast(), std::optional<QString>("Demo Mac: nothing was removed."));
    EXPECT_FALSE(model.confirm());

    // Storage: an invented folder is never listed from this disk, and its Move to Trash… asks, then
    // ends in the same toast (the safety checks would call the invented path gone).
    SpaceNode folder;
    folder.name = "Empty";
    folder.path = model.scan()->home.path + "/Empty";
    folder.isDir = true;
    model.open(folder, 0, true);
    EXPECT_FALSE(model.columnLoading());
    model.askTrash(folder);
    ASSERT_TRUE(model.confirm());
    EXPECT_EQ(performed(model).toast, "Demo Mac: nothing was removed.");

    model.restore(model.history().first());
    EXPECT_EQ(model.toast(), std::optional<QString>("Demo Mac: nothing to restore."));
    model.emptyNow(model.history().first(), false);
    EXPECT_EQ(model.toast(), std::optional<QString>("Demo Mac: nothing was emptied."));
    model.dismissToast();
    model.emptyAll(false);
    EXPECT_EQ(model.toast(), std::optional<QString>("Demo Mac: nothing was emptied."));
    EXPECT_EQ(model.jobs(), 0);
    EXPECT_FALSE(Files::exists(Home::trashFolder())) << "nothing reached a Trash";
}

}  // namespace
