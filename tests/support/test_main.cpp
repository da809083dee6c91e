// The main of every test program: a sandbox for the environment, an application object for Qt.

#include <gtest/gtest.h>

#include <QCoreApplication>

#include "support/sandbox.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    Sandbox::enter();
    int result;
    {
        QCoreApplication app(argc, argv);
        result = RUN_ALL_TESTS();
    }
    Sandbox::leave();
    return result;
}
