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

struct Moment {
    double days = 0;
    int year = 0;
};

// Each statement asks, and a comparison of a date with a text once per row, while std::localtime
// looks at the time zone's file each time: the answer is kept for a second.
const Moment& Now() {
    thread_local std::time_t known_at = -1;
    thread_local Moment known;
    if (const std::time_t now = std::time(nullptr); now != known_at) {
        const CivilDateTime local = LocalNow();
        known = {DaysFromCivil(local), local.year};
        known_at = now;
    }
    return known;
}

}  // namespace

double SystemNow() {
    return Now().days;
}

int CurrentYear() {
    return Now().year;
}

}  // namespace jet
