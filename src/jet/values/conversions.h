// Texts of dates and numbers, in US English whatever the machine's settings are, so that a
// catalogue means the same everywhere. Dates are days since 1899-12-30 (see value.h).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace jet {

struct CivilDateTime {
    int year = 1899;
    int month = 12;  // 1..12
    int day = 30;    // 1..31
    int hour = 0;
    int minute = 0;
    int second = 0;
    bool operator==(const CivilDateTime&) const = default;
};

// Requires: a real calendar date, years 100..9999.
double DaysFromCivil(const CivilDateTime& civil);
// Rounded to whole seconds. nullopt: outside the years 100..9999.
std::optional<CivilDateTime> CivilFromDays(double days);

// A date, a time or both, as people write them ("20-Nov-26", "11/20/2026 3:04:05 PM", "2026-11-20",
// "15:04"). `current_year`: of dates written without one. A plain number is not a date here.
// nullopt: not a date.
std::optional<double> ParseDate(std::u16string_view text, int current_year);

// What IsDate and IsNumeric say of a text. IsNumeric accepts blanks around, a sign, thousands
// separators, a decimal point, an exponent, a currency sign, &H and &O numbers.
bool IsDate(std::u16string_view text);
bool IsNumeric(std::u16string_view text);
std::optional<double> ParseNumber(std::u16string_view text);

// "11/20/2026 3:04:05 PM"; without the time at midnight; only the time on day 0.
std::u16string FormatGeneralDate(double days);
// `format` is a named format ("medium date" and so on, in any letter case) or a pattern
// ("mm/dd/yyyy hh:nn:ss").
std::u16string FormatDate(double days, std::u16string_view format);
// At most 15 significant digits (7 for `single`), no thousands separators, exponent form beyond.
std::u16string FormatNumber(double number);
std::u16string FormatNumber(float number);

}  // namespace jet
