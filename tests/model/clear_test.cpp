// Clearing through the model: the confirmation, the removal on real files, its toasts, and the
// result updated in place without a scan.

#include <gtest/gtest.h>
#include <fcntl.h>
#include <unistd.h>

#include "core/fmt.h"
#include "core/home.h"
#include "core/paths.h"
#include "core/prefs.h"
#include "model_fixture.h"
#include "removal/remover.h"
#include "support/files.h"
#include "support/mac_home.h"
#include "support/mount.h"
#include "support/sandbox.h"

namespace {

using namespace ModelTest;

void fill(const QString& path) {
    const int fd = ::open(Files::bytes(path).constData(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    const QByteArray block(4096, 'f');
    while (::write(fd, block.constData(), std::size_t(block.size())) > 0) {
    }
    ::close(fd);
}

class Clearing : public ::testing::Test {
protected:
    void SetUp() override { Sandbox::clearHome(); }

    // A file of `size` bytes at home-relative `relative`, as a part of a row.
    Part file(const QString& relative, qint64 size) {
        const QString path = Home::at(relative);
        Files::makeDirs(Paths::parentOf(path));
        Files::write(path, size);
        return part(path, Files::allocated(path), *machine.clock);
    }

    Machine machine;
    Scripted script;
};

TEST_F(Clearing, TheConfirmationIsTitledByItsRowsAndNothingTickedAsksNothing) {
    const Part a = file("Library/Caches/a", 10'000), b = file("Library/Caches/b", 20'000);
    script.result->findings = {row("one", Bucket::now, {a}), row("two", Bucket::call, {b}, Removal::trash(), true)};
    const auto model = scanned(script.services(machine));
    model->toggle(shown(*model, "one"));
    model->askClean(false);
    EXPECT_FALSE(model->confirm()) << "nothing ticked";

    model->toggle(shown(*model, "one"));
    model->askClean(false);
    ASSERT_TRUE(model->confirm());
    EXPECT_EQ(model->confirm()->title, "Row one");
    EXPECT_EQ(model->confirm()->bytes, a.bytes);
    EXPECT_TRUE(model->confirm()->paths.isEmpty());
    const QUuid first = model->confirm()->id;

    model->toggle(shown(*model, "two"));
    model->askClean(false);
    EXPECT_EQ(model->confirm()->title, "2 items");
    EXPECT_EQ(model->confirm()->bytes, a.bytes + b.bytes);
    EXPECT_NE(model->confirm()->id, first) << "a new sheet replaces the old one";
    model->askClean(true);
    EXPECT_EQ(model->confirm()->title, "Row two") << "the Developer page clears its own rows";
    model->dismissConfirm();
    EXPECT_FALSE(model->confirm());
    EXPECT_TRUE(Files::exists(a.path));
}

TEST_F(Clearing, TheToastCountsWhatMovedWhatWasProtectedAndWhatCouldNotMove) {
    const Part moves = file("Library/Caches/moves", 30'000);
    const Part guarded = file("Pictures/Photos Library.photoslibrary/database", 1'000);
    const Part photos = part(Home::at("Pictures/Photos Library.photoslibrary"), 1'000, *machine.clock);
    QList<Part> parts{moves, photos};
    const TestMount volume = TestMount::tmpfs(Home::at("vol"), 1);
    const bool mounted = volume.ok();
    if (mounted) {
        parts.append(file("vol/stuck", 8'000));
        fill(Home::at("vol/filler"));
    }
    script.result->findings = {row("caches", Bucket::now, parts),
                               row("sims", Bucket::now, {part(Home::at("sims"), 4'000, *machine.clock)},
                                   Removal::command({"false"}))};
    const auto model = scanned(script.services(machine));
    model->askClean(false);
    ASSERT_TRUE(model->confirm());
    EXPECT_EQ(model->confirm()->commands().size(), 1);
    const ActionReport report = performed(*model);
    const QString stuck = mounted ? "2" : "1";
    EXPECT_EQ(report.toast, "Moved " + Fmt::bytes(moves.bytes) + " to the Trash. History can restore it for 7 days. Left 1 "
                            "protected. " + stuck + " couldn't move.");
    EXPECT_EQ(model->toast(), std::optional<QString>(report.toast));
    ASSERT_EQ(report.refused.size(), 1);
    EXPECT_EQ(report.refused.first().refusal.kind, Refusal::Kind::protected_);
    EXPECT_EQ(report.failed.size(), mounted ? 2 : 1);
    EXPECT_TRUE(report.failed.last().startsWith("Row sims: ")) << "a failed command says why";
    EXPECT_FALSE(Files::exists(moves.path));
    EXPECT_TRUE(Files::exists(guarded.path));
    ASSERT_EQ(model->history().size(), 1);
    EXPECT_EQ(model->history().first().title, "2 items");
    EXPECT_EQ(model->history().first().moved.size(), 1);
    EXPECT_EQ(report.entry, model->history().first().id);
    if (!mounted) GTEST_SKIP() << "the failed move needs a full file system: " << volume.why().toStdString();
}

TEST_F(Clearing, FreeingAtOnceAndCommandsSayFreed) {
    const Part a = file("Library/Caches/a", 10'000);
    script.result->findings = {row("a", Bucket::now, {a}),
                               row("sims", Bucket::now, {part(Home::at("sims"), 4'000, *machine.clock)},
                                   Removal::command({"true"}))};
    const auto model = scanned(script.services(machine));
    model->askClean(shown(*model, "a"));
    ActionReport report = performed(*model, true);
    EXPECT_EQ(report.toast, "Freed " + Fmt::bytes(a.bytes) + ".");
    EXPECT_FALSE(Files::exists(a.path));
    EXPECT_EQ(model->history().first().state, HistoryEntry::State::permanent);
    EXPECT_EQ(model->inTrashBytes(), 0);

    model->askClean(shown(*model, "sims"));
    report = performed(*model);
    EXPECT_EQ(report.toast, "Freed 4 KB.") << "nothing went to the Trash, so there is nothing to restore";
    EXPECT_EQ(model->history().first().title, "Row sims");
}

TEST_F(Clearing, AfterARemovalTheTotalsDropAtOnceWithoutAScan) {
    MacHome(Sandbox::home(), *machine.clock).everything();
    ModelServices services = machine.services();
    auto scans = std::make_shared<std::atomic<int>>(0);
    services.scan = [scan = services.scan, scans](WalkProgress& p, const Cancelled& c, const EarlyReport& e) {
        ++*scans;
        return scan(p, c, e);
    };
    const auto model = scanned(services);
    const qint64 before = model->scan()->total(Bucket::now);
    const Finding caches = shown(*model, "caches");
    model->askClean(caches);
    ASSERT_TRUE(model->confirm());
    const qint64 cleared = model->confirm()->bytes;
    const ActionReport report = performed(*model);
    EXPECT_TRUE(report.ok()) << report.toast.toStdString();
    // The shown tree loses the items at once, the figures with the next derivation.
    EXPECT_EQ(model->scan()->home.find(caches.parts.first().path), nullptr);
    ASSERT_TRUE(waitFor([&] { return model->scan()->total(Bucket::now) == before - cleared; }));
    EXPECT_EQ(shown(*model, "caches").bytes, 0);
    EXPECT_EQ(*scans, 1);
    EXPECT_EQ(model->data()->quarleTrash, model->inTrashBytes());
    EXPECT_GE(model->inTrashBytes(), cleared);

    // Putting them back brings the row back, still without a scan.
    const ActionReport restored = reportAfter(*model, [&] { model->restore(model->history().first()); });
    EXPECT_EQ(restored.toast, "Put back " + Fmt::count(caches.parts.size(), "item") + " where they were.");
    ASSERT_TRUE(waitFor([&] { return model->scan()->total(Bucket::now) == before; }));
    EXPECT_EQ(shown(*model, "caches").bytes, caches.bytes);
    EXPECT_EQ(model->history().first().state, HistoryEntry::State::restored);
    EXPECT_EQ(*scans, 1);
}

TEST_F(Clearing, ARestoreThatFindsSomethingInThePlaceSaysSo) {
    const Part a = file("Downloads/a.dmg", 10'000), b = file("Downloads/b.dmg", 10'000);
    script.result->findings = {row("both", Bucket::now, {a, b})};
    const auto model = scanned(script.services(machine));
    model->askClean(shown(*model, "both"));
    performed(*model);
    Files::writeText(a.path, "a new a");
    const ActionReport report = reportAfter(*model, [&] { model->restore(model->history().first()); });
    EXPECT_EQ(report.toast, "Put back 1. 1 couldn't go back: something is in their place.");
    EXPECT_EQ(report.notBack, QStringList{a.path});
    EXPECT_EQ(Files::allocated(b.path), b.bytes);
    EXPECT_EQ(model->history().first().state, HistoryEntry::State::inTrash) << "a's copy is still in the Trash";
}

TEST_F(Clearing, EmptyingAsksFirstThenDeletesOnlyQuarlesItems) {
    const Part a = file("Library/Caches/a", 10'000), b = file("Library/Caches/b", 20'000);
    script.result->findings = {row("a", Bucket::now, {a}), row("b", Bucket::now, {b})};
    const auto model = scanned(script.services(machine));
    model->askClean(shown(*model, "a"));
    performed(*model);
    model->askClean(shown(*model, "b"));
    performed(*model);
    const QString elsewhere = Home::trashFolder() + "/files/not-ours";
    Files::write(elsewhere, 4'000);

    const HistoryEntry first = model->history().last();
    model->emptyNow(first, false);
    ASSERT_TRUE(model->ask());
    EXPECT_EQ(model->ask()->title, "Empty Row a for good?");
    EXPECT_EQ(model->ask()->message, Fmt::bytes(a.bytes) + " will be deleted from the Trash. History won't be able to restore it.");
    EXPECT_EQ(model->ask()->button, "Empty for good");
    model->dismissAsk();
    EXPECT_TRUE(Files::exists(first.moved.first().trashed));

    model->emptyNow(first, false);
    const ActionReport report = reportAfter(*model, [&] {
        model->confirmAsk();
        EXPECT_FALSE(model->ask());
        EXPECT_EQ(model->toast(), std::optional<QString>("Emptying " + Fmt::bytes(a.bytes) + " from the Trash…"));
    });
    EXPECT_EQ(report.toast, "Emptied " + Fmt::bytes(a.bytes) + ". It's free space now.");
    EXPECT_FALSE(Files::exists(first.moved.first().trashed));
    EXPECT_EQ(model->history().last().state, HistoryEntry::State::emptied);

    model->emptyAll(false);  // its title: HistoryVerbs in cli_test
    ASSERT_TRUE(model->ask());
    EXPECT_TRUE(model->ask()->message.endsWith("Nothing else in your Trash is touched."));
    reportAfter(*model, [&] { model->confirmAsk(); });
    EXPECT_EQ(model->history().first().state, HistoryEntry::State::emptied);
    EXPECT_TRUE(Files::exists(elsewhere));

    model->emptyAll(false);
    EXPECT_FALSE(model->ask()) << "nothing of Quarle's is left in the Trash";
}

TEST_F(Clearing, KeepDaysFrom30To7AsksFirstAndCancellingKeeps30) {
    Prefs::setValue("keepDays", 30);
    QList<HistoryEntry> entries;
    {
        HistoryStore store;
        for (int i = 0; i < 3; ++i) {
            HistoryEntry e = Remover::trash({file("Library/Caches/c" + QString::number(i), 10'000).path},
                                            "clean " + QString::number(i), false, store).entry;
            e.date = machine.clock->addDays(-10);
            store.update(e);
            entries.append(e);
        }
    }
    const auto model = scanned(script.services(machine));
    model->loadHistory();
    EXPECT_EQ(model->keepDays(), 30);
    EXPECT_EQ(model->keepFor(), "for 30 days");
    qint64 bytes = 0;
    for (const HistoryEntry& e : entries) bytes += e.bytes;

    model->setKeepDays(7, false);
    ASSERT_TRUE(model->ask());
    EXPECT_EQ(model->ask()->title, "Keep things for 7 days?");
    EXPECT_EQ(model->ask()->message, "3 cleans (" + Fmt::bytes(bytes) + ") have been in the Trash longer than that. "
                                     "They'll be emptied now and History won't be able to restore them.");
    EXPECT_EQ(model->ask()->button, "Empty them and keep 7 days");
    model->dismissAsk();
    EXPECT_EQ(model->keepDays(), 30);
    EXPECT_EQ(Model::storedKeepDays(), 30);
    for (const HistoryEntry& e : model->history()) EXPECT_EQ(e.state, HistoryEntry::State::inTrash);

    model->setKeepDays(7, false);
    EXPECT_EQ(reportAfter(*model, [&] { model->confirmAsk(); }).bytes, bytes);
    EXPECT_EQ(model->keepDays(), 7);
    EXPECT_EQ(Model::storedKeepDays(), 7);
    for (const HistoryEntry& e : model->history()) EXPECT_EQ(e.state, HistoryEntry::State::emptied);

    // Below 1 day: kept until emptied by hand, never asked, never emptied.
    {
        const Part d = file("Library/Caches/d", 10'000);
        script.result->findings = {row("d", Bucket::now, {d})};
    }
    model->rederive();
    ASSERT_TRUE(waitFor([&] { return !shown(*model, "d").id.isEmpty(); }));
    model->askClean(shown(*model, "d"));
    performed(*model);
    *machine.clock = machine.clock->addDays(400);
    reportAfter(*model, [&] {
        model->setKeepDays(0, false);
        EXPECT_FALSE(model->ask());
    });
    EXPECT_EQ(model->keepFor(), "until you empty it");
    EXPECT_EQ(model->history().first().state, HistoryEntry::State::inTrash);
    model->setKeepDays(0, false);
    EXPECT_EQ(model->jobs(), 0) << "the same value changes nothing";
}

}  // namespace
