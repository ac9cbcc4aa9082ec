#include "jet/values/conversions.h"

#include <chrono>
#include <cmath>

namespace jet {
namespace {

// Days from 1899-12-30 to 1970-01-01, the epoch of std::chrono.
constexpr int kDaysToUnixEpoch = 25569;
constexpr int kFirstDay = -657434;  // 0100-01-01
constexpr int kLastDay = 2958465;   // 9999-12-31
constexpr int kSecondsPerDay = 86400;

}  // namespace

double DaysFromCivil(const CivilDateTime& civil) {
    using namespace std::chrono;
    const sys_days date =
        year_month_day(year(civil.year), month(static_cast<unsigned>(civil.month)),
                       day(static_cast<unsigned>(civil.day)));
    const int days = static_cast<int>(date.time_since_epoch().count()) + kDaysToUnixEpoch;
    const int seconds = civil.hour * 3600 + civil.minute * 60 + civil.second;
    const double time = seconds / static_cast<double>(kSecondsPerDay);
    return days < 0 ? days - time : days + time;
}

std::optional<CivilDateTime> CivilFromDays(double days) {
    using namespace std::chrono;
    if (!(days > kFirstDay - 1.0 && days < kLastDay + 1.0)) return std::nullopt;
    const double whole = std::trunc(days);
    int day_number = static_cast<int>(whole);
    // The time of day counts forward also where the day is negative.
    int seconds = static_cast<int>(std::lround(std::fabs(days - whole) * kSecondsPerDay));
    if (seconds == kSecondsPerDay) {
        ++day_number;
        seconds = 0;
    }
    if (day_number < kFirstDay || day_number > kLastDay) return std::nullopt;
    const year_month_day date(sys_days(std::chrono::days(day_number - kDaysToUnixEpoch)));
    CivilDateTime civil;
    civil.year = static_cast<int>(date.year());
    civil.month = static_cast<int>(static_cast<unsigned>(date.month()));
    civil.day = static_cast<int>(static_cast<unsigned>(date.day()));
    civil.hour = seconds / 3600;
    civil.minute = seconds / 60 % 60;
    civil.second = seconds % 60;
    return civil;
}

}  // namespace jet
