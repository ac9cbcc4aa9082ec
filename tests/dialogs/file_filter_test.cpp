#include "dialogs/file_filter.h"

#include <gtest/gtest.h>

namespace dialogs {
namespace {

TEST(FileFilterTest, PatternsArePartedByBlanksForQt) {
    EXPECT_EQ(QtNameFilters(QStringLiteral("Pictures (*.bmp;*.jpg;*.gif)|*.bmp;*.jpg;*.gif")),
              QStringList{QStringLiteral("Pictures (*.bmp *.jpg *.gif)")});
}

TEST(FileFilterTest, ADescriptionWithoutParenthesesIsKeptWhole) {
    EXPECT_EQ(QtNameFilters(QStringLiteral("VPlauncher.DAT|VPlauncher.dat")),
              QStringList{QStringLiteral("VPlauncher.DAT (VPlauncher.dat)")});
}

TEST(FileFilterTest, SeveralPairsGiveSeveralChoices) {
    EXPECT_EQ(QtNameFilters(QStringLiteral("Bitmap (*.bmp)|*.bmp|JPEG (*.jpg)|*.jpg")),
              (QStringList{QStringLiteral("Bitmap (*.bmp)"), QStringLiteral("JPEG (*.jpg)")}));
}

TEST(FileFilterTest, ExecutablesAreFollowedByAllFiles) {
    EXPECT_EQ(
        QtNameFilters(QStringLiteral("Executables (*.Exe)|*.Exe")),
        (QStringList{QStringLiteral("Executables (*.Exe)"), QStringLiteral("All files (*)")}));
}

TEST(FileFilterTest, AnEmptyFilterGivesNoChoice) {
    EXPECT_TRUE(QtNameFilters(QString()).isEmpty());
}

TEST(FileFilterTest, ADescriptionWithoutPatternsIsLeftOut) {
    EXPECT_TRUE(QtNameFilters(QStringLiteral("Pictures")).isEmpty());
    EXPECT_TRUE(QtNameFilters(QStringLiteral("Pictures|")).isEmpty());
}

}  // namespace
}  // namespace dialogs
