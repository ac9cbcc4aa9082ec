// main() of the tests that need widgets: a QApplication around GoogleTest.
#include "support/offscreen_letters.h"

#include <gtest/gtest.h>

#include <QtWidgets/QApplication>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // ctest asks for the names of the tests without their environment.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    test_support::FindFonts();
    QApplication application(argc, argv);
    test_support::ChooseLetters();
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(QStringLiteral("fusion"));  // which the program's own stands on
    return RUN_ALL_TESTS();
}
