#include "jet/values/system_clock.h"

#include "jet/values/conversions.h"

#include <ctime>

namespace jet {
namespace {

CivilDateTime LocalNow() {
    const std::time_t now = std::time(nullptr);
    const std::tm* local = std::localtime(&now);
    if (local == nullptr) return {};
    CivilDateTime civil;
    civil.year = local->tm_year + 1900;
    civil.month = local->tm_mon + 1;
    civil.day = local->tm_mday;
    civil.hour = local->tm_hour;
    civil.minute = local->tm_min;
    civil.second = local->tm_sec < 60 ? local->tm_sec : 59;  // a leap second
    return civil;
}

}  // namespace

double SystemNow() {
    return DaysFromCivil(LocalNow());
}

// Comparing a date with a text asks once per row, and std::localtime looks at the time zone's file
// each time: the answer is kept for a second.
int CurrentYear() {
    thread_local std::time_t known_at = -1;
    thread_local int year = 0;
    if (const std::time_t now = std::time(nullptr); now != known_at) {
        year = LocalNow().year;
        known_at = now;
    }
    return year;
}

}  // namespace jet
