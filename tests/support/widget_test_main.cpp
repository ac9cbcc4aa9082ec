// main() of the tests that need widgets: a QApplication around GoogleTest.
#include <gtest/gtest.h>

#include <QtWidgets/QApplication>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // ctest asks for the names of the tests without their environment.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
