// Every page of the demonstration, in both palettes, renders to something that is not blank.

#include <gtest/gtest.h>

#include <QImage>
#include <QStackedWidget>
#include <QTest>

#include "model_fixture.h"
#include "ui/theme/theme.h"
#include "ui/window/main_window.h"
#include "ui/window/sidebar.h"

TEST(Pictures, EveryDemonstrationPageRendersInBothPalettes) {
    qputenv("QUARLE_DEMO", "1");
    Model model;
    qunsetenv("QUARLE_DEMO");
    MainWindow window(model);
    model.start();
    window.show();
    ASSERT_TRUE(ModelTest::waitFor([&] { return model.scan().has_value(); }));
    for (Appearance appearance : {Appearance::night, Appearance::paper}) {
        model.setAppearance(appearance);
        for (int i = 0; i < pageCount; ++i) {
            model.setPage(Page(i));
            QTest::qWait(1);
            const QImage image = window.stack()->currentWidget()->grab().toImage();
            ASSERT_FALSE(image.isNull());
            // A blank page is one colour; a page with text has many.
            QSet<QRgb> colours;
            for (int y = 0; y < image.height() && colours.size() < 20; y += 7)
                for (int x = 0; x < image.width(); x += 7) colours.insert(image.pixel(x, y));
            EXPECT_GE(colours.size(), 3) << pageSlug(Page(i)).toStdString();
        }
    }
}
