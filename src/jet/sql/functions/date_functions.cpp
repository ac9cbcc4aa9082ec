#include "jet/errors.h"
#include "jet/sql/functions/functions.h"
#include "jet/values/calendar_names.h"
#include "jet/values/conversions.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace jet::sql {
namespace {

using base::Result;

enum class Interval : std::uint8_t {
    kYear,
    kQuarter,
    kMonth,
    kDayOfYear,
    kDay,
    kWeekday,
    kWeek,
    kHour,
    kMinute,
    kSecond,
};

struct IntervalName {
    std::u16string_view name;
    Interval interval;
};

constexpr IntervalName kIntervals[] = {
    {u"yyyy", Interval::kYear},   {u"q", Interval::kQuarter}, {u"m", Interval::kMonth},
    {u"y", Interval::kDayOfYear}, {u"d", Interval::kDay},     {u"w", Interval::kWeekday},
    {u"ww", Interval::kWeek},     {u"h", Interval::kHour},    {u"n", Interval::kMinute},
    {u"s", Interval::kSecond},
};

Result<Interval> IntervalArgument(const Value& value) {
    const std::u16string text = ToText(value);
    for (const IntervalName& named : kIntervals)
        if (SameWord(named.name, text)) return named.interval;
    return JetError(ErrorNumber::kInvalidArgument);
}

Result<CivilDateTime> CivilArgument(const Value& value, const EvalContext& context) {
    ASSIGN_OR_RETURN(const double days, DateArgument(value, context));
    return *CivilFromDays(days);
}

double DayOf(CivilDateTime civil) {
    civil.hour = civil.minute = civil.second = 0;
    return DaysFromCivil(civil);
}

// Seconds since day 0, and back.
double SecondsOf(const CivilDateTime& civil) {
    return DayOf(civil) * 86400 + civil.hour * 3600 + civil.minute * 60 + civil.second;
}

Result<Value> DateFromSeconds(double seconds) {
    const double day = std::floor(seconds / 86400);
    const double time = (seconds - day * 86400) / 86400;
    const double days = day < 0 ? day - time : day + time;
    if (!CivilFromDays(days)) return JetError(ErrorNumber::kOverflow);
    return Value::DateTime(days);
}

// 1 = Sunday.
int WeekdayOf(double day) {
    return static_cast<int>(std::fmod(std::fmod(day + 6, 7) + 7, 7)) + 1;
}

int DaysInMonth(int year, int month) {
    using namespace std::chrono;
    const year_month_day_last last(
        std::chrono::year(year), month_day_last(std::chrono::month(static_cast<unsigned>(month))));
    return static_cast<int>(static_cast<unsigned>(last.day()));
}

// Months may run below 1 and above 12. nullopt: outside the calendar.
std::optional<CivilDateTime> MonthFrom(std::int64_t year, std::int64_t month) {
    const std::int64_t months = year * 12 + month - 1;
    CivilDateTime civil;
    if (months < 100L * 12 || months >= 10000L * 12) return std::nullopt;
    civil.year = static_cast<int>(months / 12);
    civil.month = static_cast<int>(months % 12) + 1;
    civil.day = 1;
    return civil;
}

Result<Value> Now(Arguments, EvalContext& context) {
    return Value::DateTime(context.session->now);
}
Result<Value> DateToday(Arguments, EvalContext& context) {
    return Value::DateTime(std::trunc(context.session->now));
}
Result<Value> TimeNow(Arguments, EvalContext& context) {
    const double now = context.session->now;
    return Value::DateTime(std::fabs(now - std::trunc(now)));
}

Result<Value> Year(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(const CivilDateTime civil, CivilArgument(a[0], context));
    return Value::Long(civil.year);
}
Result<Value> Month(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(const CivilDateTime civil, CivilArgument(a[0], context));
    return Value::Long(civil.month);
}
Result<Value> Day(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(const CivilDateTime civil, CivilArgument(a[0], context));
    return Value::Long(civil.day);
}
Result<Value> Hour(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(const CivilDateTime civil, CivilArgument(a[0], context));
    return Value::Long(civil.hour);
}
Result<Value> Minute(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(const CivilDateTime civil, CivilArgument(a[0], context));
    return Value::Long(civil.minute);
}
Result<Value> Second(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(const CivilDateTime civil, CivilArgument(a[0], context));
    return Value::Long(civil.second);
}

// Weekday(date [, first day of the week: 1 = Sunday])
Result<Value> Weekday(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(const CivilDateTime civil, CivilArgument(a[0], context));
    std::int32_t first = 1;
    if (a.size() > 1) {
        ASSIGN_OR_RETURN(first, WholeArgument(a[1]));
        if (first < 0 || first > 7) return JetError(ErrorNumber::kInvalidArgument);
    }
    if (first == 0) first = 1;  // the system's own, which is Sunday here
    return Value::Long((WeekdayOf(DayOf(civil)) - first + 7) % 7 + 1);
}

Result<Value> DateSerial(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(std::int32_t year, WholeArgument(a[0]));
    ASSIGN_OR_RETURN(const std::int32_t month, WholeArgument(a[1]));
    ASSIGN_OR_RETURN(const std::int32_t day, WholeArgument(a[2]));
    if (year >= 0 && year < 30)
        year += 2000;
    else if (year >= 30 && year < 100)
        year += 1900;
    const auto first = MonthFrom(year, month);
    if (!first) return JetError(ErrorNumber::kOverflow);
    return DateFromSeconds((DaysFromCivil(*first) + day - 1) * 86400.0);
}

Result<Value> TimeSerial(Arguments a, EvalContext&) {
    double seconds = 0;
    for (const Value& part : a) {
        ASSIGN_OR_RETURN(const std::int32_t number, WholeArgument(part));
        seconds = seconds * 60 + number;
    }
    return DateFromSeconds(seconds);
}

Result<Value> DateValue(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(const CivilDateTime civil, CivilArgument(a[0], context));
    return Value::DateTime(DayOf(civil));
}

Result<Value> TimeValue(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(CivilDateTime civil, CivilArgument(a[0], context));
    const CivilDateTime origin;
    civil.year = origin.year;
    civil.month = origin.month;
    civil.day = origin.day;
    return Value::DateTime(DaysFromCivil(civil));
}

Result<Value> AddMonths(CivilDateTime civil, std::int64_t months) {
    auto moved = MonthFrom(civil.year, civil.month + months);
    if (!moved) return JetError(ErrorNumber::kOverflow);
    moved->day = std::min(civil.day, DaysInMonth(moved->year, moved->month));
    moved->hour = civil.hour;
    moved->minute = civil.minute;
    moved->second = civil.second;
    return Value::DateTime(DaysFromCivil(*moved));
}

Result<Value> DateAdd(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(const Interval interval, IntervalArgument(a[0]));
    ASSIGN_OR_RETURN(const std::int32_t count, WholeArgument(a[1]));
    ASSIGN_OR_RETURN(const CivilDateTime civil, CivilArgument(a[2], context));
    const std::int64_t n = count;
    const double seconds = SecondsOf(civil);
    switch (interval) {
    case Interval::kYear:
        return AddMonths(civil, n * 12);
    case Interval::kQuarter:
        return AddMonths(civil, n * 3);
    case Interval::kMonth:
        return AddMonths(civil, n);
    case Interval::kWeek:
        return DateFromSeconds(seconds + static_cast<double>(n) * 7 * 86400);
    case Interval::kHour:
        return DateFromSeconds(seconds + static_cast<double>(n) * 3600);
    case Interval::kMinute:
        return DateFromSeconds(seconds + static_cast<double>(n) * 60);
    case Interval::kSecond:
        return DateFromSeconds(seconds + static_cast<double>(n));
    default:
        return DateFromSeconds(seconds + static_cast<double>(n) * 86400);
    }
}

int QuarterOf(const CivilDateTime& civil) {
    return (civil.month + 2) / 3;
}

// Boundaries crossed from `a` to `b`.
double Distance(Interval interval, const CivilDateTime& a, const CivilDateTime& b) {
    const double days = DayOf(b) - DayOf(a);
    const double seconds = SecondsOf(b) - SecondsOf(a);
    switch (interval) {
    case Interval::kYear:
        return b.year - a.year;
    case Interval::kQuarter:
        return (b.year - a.year) * 4 + QuarterOf(b) - QuarterOf(a);
    case Interval::kMonth:
        return (b.year - a.year) * 12 + b.month - a.month;
    case Interval::kWeekday:
        return std::trunc(days / 7);
    case Interval::kWeek:
        return ((DayOf(b) - WeekdayOf(DayOf(b))) - (DayOf(a) - WeekdayOf(DayOf(a)))) / 7;
    case Interval::kHour:
        return std::floor(SecondsOf(b) / 3600) - std::floor(SecondsOf(a) / 3600);
    case Interval::kMinute:
        return std::floor(SecondsOf(b) / 60) - std::floor(SecondsOf(a) / 60);
    case Interval::kSecond:
        return seconds;
    default:
        return days;
    }
}

Result<Value> DateDiff(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(const Interval interval, IntervalArgument(a[0]));
    ASSIGN_OR_RETURN(const CivilDateTime first, CivilArgument(a[1], context));
    ASSIGN_OR_RETURN(const CivilDateTime second, CivilArgument(a[2], context));
    const double distance = Distance(interval, first, second);
    if (std::fabs(distance) > 2147483647.0) return JetError(ErrorNumber::kOverflow);
    return Value::Long(static_cast<std::int32_t>(distance));
}

int DayOfYear(const CivilDateTime& civil) {
    CivilDateTime first = civil;
    first.month = first.day = 1;
    return static_cast<int>(DayOf(civil) - DayOf(first)) + 1;
}

int WeekOfYear(const CivilDateTime& civil) {
    CivilDateTime first = civil;
    first.month = first.day = 1;
    return (DayOfYear(civil) + WeekdayOf(DayOf(first)) - 2) / 7 + 1;
}

Result<Value> DatePart(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(const Interval interval, IntervalArgument(a[0]));
    ASSIGN_OR_RETURN(const CivilDateTime civil, CivilArgument(a[1], context));
    switch (interval) {
    case Interval::kYear:
        return Value::Long(civil.year);
    case Interval::kQuarter:
        return Value::Long(QuarterOf(civil));
    case Interval::kMonth:
        return Value::Long(civil.month);
    case Interval::kDayOfYear:
        return Value::Long(DayOfYear(civil));
    case Interval::kDay:
        return Value::Long(civil.day);
    case Interval::kWeekday:
        return Value::Long(WeekdayOf(DayOf(civil)));
    case Interval::kWeek:
        return Value::Long(WeekOfYear(civil));
    case Interval::kHour:
        return Value::Long(civil.hour);
    case Interval::kMinute:
        return Value::Long(civil.minute);
    default:
        return Value::Long(civil.second);
    }
}

constexpr Function kDateFunctions[] = {
    {u"Now", 0, 0, FunctionKind::kStrict, Now},
    {u"Date", 0, 0, FunctionKind::kStrict, DateToday},
    {u"Time", 0, 0, FunctionKind::kStrict, TimeNow},
    {u"Year", 1, 1, FunctionKind::kStrict, Year},
    {u"Month", 1, 1, FunctionKind::kStrict, Month},
    {u"Day", 1, 1, FunctionKind::kStrict, Day},
    {u"Hour", 1, 1, FunctionKind::kStrict, Hour},
    {u"Minute", 1, 1, FunctionKind::kStrict, Minute},
    {u"Second", 1, 1, FunctionKind::kStrict, Second},
    {u"Weekday", 1, 2, FunctionKind::kStrict, Weekday},
    {u"DateSerial", 3, 3, FunctionKind::kStrict, DateSerial},
    {u"TimeSerial", 3, 3, FunctionKind::kStrict, TimeSerial},
    {u"DateValue", 1, 1, FunctionKind::kStrict, DateValue},
    {u"TimeValue", 1, 1, FunctionKind::kStrict, TimeValue},
    {u"DateAdd", 3, 3, FunctionKind::kStrict, DateAdd},
    {u"DateDiff", 3, 3, FunctionKind::kStrict, DateDiff},
    {u"DatePart", 2, 2, FunctionKind::kStrict, DatePart},
};

}  // namespace

std::span<const Function> DateFunctions() {
    return kDateFunctions;
}

}  // namespace jet::sql
