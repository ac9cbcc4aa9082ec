// Qt draws offscreen with the fonts of this machine, but on Windows with those of one folder alone,
// and without any it draws boxes. The tests' folder is $TAVOLO_FONTS, as Wine keeps variables of Qt
// from its programs. (On a screen the fonts are Windows' own.)
#pragma once

#include <QtGui/QFont>
#include <QtWidgets/QApplication>

namespace test_support {

constexpr char kFontsVariable[] = "TAVOLO_FONTS";

// Before the application is made.
inline void FindFonts() {
    if (qEnvironmentVariableIsSet(kFontsVariable))
        qputenv("QT_QPA_FONTDIR", qgetenv(kFontsVariable));
}

// The letters that the tests have elsewhere.
inline void ChooseLetters() {
    constexpr int kPoints = 9;
    if (qEnvironmentVariableIsSet(kFontsVariable))
        QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), kPoints));
}

}  // namespace test_support
