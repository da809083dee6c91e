// The main of the window's tests: the usual sandbox, an offscreen application with widgets.

#include <gtest/gtest.h>

#include <QApplication>

#include "support/sandbox.h"
#include "ui/theme/theme.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    Sandbox::enter();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int result;
    {
        QApplication app(argc, argv);
        Theme::rememberSystem();
        result = RUN_ALL_TESTS();
    }
    Sandbox::leave();
    return result;
}
