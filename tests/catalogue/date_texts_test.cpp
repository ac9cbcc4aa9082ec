#include "catalogue/date_texts.h"

#include <gtest/gtest.h>

namespace catalogue {
namespace {

TEST(DateTextTest, AMediumDateNamesTheMonth) {
    const QDateTime time(QDate(2026, 11, 5), QTime(15, 4, 5));
    EXPECT_EQ(MediumDate(time), QStringLiteral("05-Nov-26"));
}

TEST(DateTextTest, AGeneralDateShowsTheTimeUnlessItIsMidnight) {
    const QDate date(2026, 11, 20);
    EXPECT_EQ(GeneralDate(QDateTime(date, QTime(15, 4, 5))),
              QStringLiteral("11/20/2026 3:04:05 PM"));
    EXPECT_EQ(GeneralDate(QDateTime(date, QTime(0, 0))), QStringLiteral("11/20/2026"));
}

TEST(DateTextTest, DaysCountFromTheEndOf1899) {
    EXPECT_DOUBLE_EQ(ToOleDate(QDateTime(QDate(1900, 1, 1), QTime(12, 0))), 2.5);
}

TEST(StoredDateTest, IsTheMediumDateAsLongAsThatIsReadBack) {
    const auto stored = [](int year, int month, int day) {
        return StoredDate(QDateTime(QDate(year, month, day), QTime(12, 0)));
    };
    EXPECT_EQ(stored(2026, 11, 20), QStringLiteral("20-Nov-26"));
    EXPECT_EQ(stored(2029, 12, 31), QStringLiteral("31-Dec-29"));
    EXPECT_EQ(stored(2030, 1, 1), QStringLiteral("01-Jan-2030"));
    EXPECT_EQ(stored(2099, 12, 31), QStringLiteral("31-Dec-2099"));
}

}  // namespace
}  // namespace catalogue
