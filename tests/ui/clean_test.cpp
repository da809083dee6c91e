// Clean: the rows by bucket with tristate ticks that follow the model, the place kept across a
// re-derivation, Move to Trash… only with something ticked, and the confirmation listing exactly
// the chosen items, whose Delete Now frees them at once.

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

#include "core/home.h"
#include "core/paths.h"
#include "model_fixture.h"
#include "support/files.h"
#include "support/sandbox.h"
#include "ui/dialogs/confirm_sheet.h"
#include "ui/pages/clean_page.h"
#include "ui/widgets/finding_model.h"
#include "ui/window/modal_host.h"

using namespace ModelTest;

namespace {

Part file(const QString& relative, const QDateTime& now) {
    const QString path = Home::at(relative);
    Files::makeDirs(Paths::parentOf(path));
    Files::write(path, 40'000);
    return part(path, Files::allocated(path), now);
}

Qt::CheckState tick(const QModelIndex& index) { return index.data(Qt::CheckStateRole).value<Qt::CheckState>(); }

}  // namespace

TEST(CleanPage, TicksPlaceConfirmationAndDeleteNow) {
    Sandbox::clearHome();
    Machine machine;
    Scripted script;
    const QDateTime now = *machine.clock;
    const Part a = file("Library/Caches/a", now), b = file("Library/Caches/b", now);
    script.result->findings = {row("caches", Bucket::now, {a, b}),
                               row("builds", Bucket::call, {file("Developer/x", now)}, Removal::trash(), true),
                               row("backups", Bucket::keep, {part("/elsewhere", 5, now)}, Removal::none())};
    auto model = scanned(script.services(machine));
    QWidget host;
    ModalHost modals(*model, &host);
    CleanPage page(*model, false);
    FindingModel* rows = page.rows();
    ASSERT_GE(rows->rowCount(), 2);
    EXPECT_EQ(rows->index(1, 0).data().toString(), "Your call");
    const QModelIndex caches = rows->indexOf("caches");
    EXPECT_EQ(tick(caches), Qt::Checked);
    EXPECT_FALSE(rows->flags(rows->indexOf("backups")) & Qt::ItemIsUserCheckable);

    // Unticking a part goes through the model; the row's box follows as "some".
    rows->setData(rows->index(1, 0, caches), Qt::Unchecked, Qt::CheckStateRole);
    QTest::qWait(1);
    EXPECT_EQ(tick(rows->indexOf("caches")), Qt::PartiallyChecked);

    // A re-derivation keeps the current row and what was open.
    page.view()->expand(rows->indexOf("caches"));
    page.view()->setCurrentIndex(rows->indexOf("builds"));
    const int derivations = *script.derivations;
    model->rederive();
    ASSERT_TRUE(waitFor([&] { return *script.derivations > derivations; }));
    QTest::qWait(10);
    EXPECT_EQ(page.view()->currentIndex().data(FindingModel::idRole).toString(), "builds");
    EXPECT_TRUE(page.view()->isExpanded(rows->indexOf("caches")));

    // Keys: the current row is the model's focus, Space ticks it, Return opens it.
    EXPECT_EQ(model->focus(), "builds");
    QTest::keyClick(page.view(), Qt::Key_Space);
    QTest::qWait(1);
    EXPECT_EQ(tick(rows->indexOf("builds")), Qt::Checked);
    QTest::keyClick(page.view(), Qt::Key_Return);
    EXPECT_TRUE(page.view()->isExpanded(rows->indexOf("builds")));

    // Finding: the rows and buckets that do not match are hidden; Escape shows them all again.
    model->bumpFind();
    page.find()->setText("row b");
    EXPECT_TRUE(page.view()->isRowHidden(rows->indexOf("caches").row(), rows->indexOf("caches").parent()));
    EXPECT_FALSE(page.view()->isRowHidden(rows->indexOf("builds").row(), rows->indexOf("builds").parent()));
    EXPECT_TRUE(page.view()->isRowHidden(0, {})) << "Clear now holds no match";
    QTest::keyClick(page.find(), Qt::Key_Escape);
    EXPECT_TRUE(page.find()->text().isEmpty());
    EXPECT_FALSE(page.view()->isRowHidden(0, {}));

    // Nothing ticked: nothing to move.
    model->toggle(shown(*model, "caches"));
    model->toggle(shown(*model, "builds"));
    QTest::qWait(1);
    EXPECT_EQ(tick(rows->indexOf("caches")), Qt::Unchecked);
    EXPECT_FALSE(page.trashButton()->isEnabled());
    page.suggestButton()->click();
    QTest::qWait(1);
    EXPECT_EQ(tick(rows->indexOf("caches")), Qt::Checked);
    ASSERT_TRUE(page.trashButton()->isEnabled());

    // The sheet lists exactly the chosen items; Delete Now frees them without the Trash.
    page.trashButton()->click();
    ASSERT_TRUE(waitFor([&] { return modals.confirmSheet() != nullptr; }));
    const QStringList lines = modals.confirmSheet()->lines();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].startsWith("Row caches\t"));
    EXPECT_TRUE(lines[1].startsWith("a\t"));
    EXPECT_TRUE(lines[2].startsWith("b\t"));
    for (QPushButton* button : modals.confirmSheet()->findChildren<QPushButton*>())
        if (button->text() == "Delete Now") button->click();
    ASSERT_TRUE(settle(*model));
    EXPECT_FALSE(Files::exists(a.path));
    EXPECT_FALSE(Files::exists(b.path));
    EXPECT_FALSE(model->confirm());
    EXPECT_TRUE(model->toast()->startsWith("Freed ")) << model->toast()->toStdString();
}
