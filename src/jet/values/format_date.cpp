// Dates as text: the named formats and the pattern language ("mm/dd/yyyy hh:nn:ss").
#include "jet/values/calendar_names.h"
#include "jet/values/conversions.h"

#include <chrono>
#include <cmath>
#include <string>

namespace jet {
namespace {

std::u16string Digits(int value, int width) {
    const std::string text = std::to_string(value);
    std::u16string padded;
    for (int i = static_cast<int>(text.size()); i < width; ++i)
        padded += u'0';
    for (const char c : text)
        padded += static_cast<char16_t>(c);
    return padded;
}

// 0 = Sunday. Day 0 of the count was a Saturday.
int Weekday(double days) {
    const int day = static_cast<int>(std::trunc(days));
    return ((day + 6) % 7 + 7) % 7;
}

int DayOfYear(const CivilDateTime& civil) {
    CivilDateTime first = civil;
    first.month = first.day = 1;
    first.hour = first.minute = first.second = 0;
    CivilDateTime day = civil;
    day.hour = day.minute = day.second = 0;
    return static_cast<int>(DaysFromCivil(day) - DaysFromCivil(first)) + 1;
}

// Weeks begin on Sunday; the week of January 1 is the first.
int WeekOfYear(const CivilDateTime& civil, double days) {
    const int day = DayOfYear(civil);
    const int weekday_of_first = ((Weekday(days) - (day - 1)) % 7 + 7) % 7;
    return (day - 1 + weekday_of_first) / 7 + 1;
}

int TwelveHour(int hour) {
    return hour % 12 == 0 ? 12 : hour % 12;
}

std::u16string ShortDate(const CivilDateTime& civil) {
    return Digits(civil.month, 1) + u"/" + Digits(civil.day, 1) + u"/" + Digits(civil.year, 1);
}

std::u16string LongTime(const CivilDateTime& civil) {
    return Digits(TwelveHour(civil.hour), 1) + u":" + Digits(civil.minute, 2) + u":" +
           Digits(civil.second, 2) + (civil.hour < 12 ? u" AM" : u" PM");
}

// Writes one date by one pattern.
class PatternWriter {
public:
    PatternWriter(double days, const CivilDateTime& civil, std::u16string_view pattern)
        : days_(days), civil_(civil), pattern_(pattern), half_day_(HasHalfDay(pattern)) {}

    std::u16string Write() {
        while (!pattern_.empty()) {
            if (!WriteLiteral() && !WriteHalfDay()) WriteLetters();
        }
        return std::move(text_);
    }

private:
    static bool StartsWith(std::u16string_view text, std::u16string_view word) {
        return text.size() >= word.size() && SameWord(text.substr(0, word.size()), word);
    }

    // Any AM/PM part makes the hours count to twelve.
    static bool HasHalfDay(std::u16string_view pattern) {
        for (std::size_t i = 0; i < pattern.size(); ++i) {
            if (pattern[i] == u'\\')
                ++i;
            else if (pattern[i] == u'"')
                i = std::min(pattern.find(u'"', i + 1), pattern.size() - 1);
            else if (StartsWith(pattern.substr(i), u"AM/PM") ||
                     StartsWith(pattern.substr(i), u"A/P"))
                return true;
        }
        return false;
    }

    bool WriteLiteral() {
        if (pattern_.front() == u'\\') {
            if (pattern_.size() > 1) text_ += pattern_[1];
            pattern_.remove_prefix(std::min<std::size_t>(2, pattern_.size()));
            return true;
        }
        if (pattern_.front() != u'"') return false;
        const std::size_t end = std::min(pattern_.find(u'"', 1), pattern_.size());
        text_ += pattern_.substr(1, end - 1);
        pattern_.remove_prefix(std::min(end + 1, pattern_.size()));
        return true;
    }

    bool WriteHalfDay() {
        const bool morning = civil_.hour < 12;
        for (const std::u16string_view mark : {u"AM/PM", u"A/P"}) {
            if (!StartsWith(pattern_, mark)) continue;
            const std::u16string_view written = pattern_.substr(0, mark.size());
            const std::size_t slash = written.find(u'/');
            text_ += morning ? written.substr(0, slash) : written.substr(slash + 1);
            pattern_.remove_prefix(mark.size());
            return true;
        }
        return false;
    }

    // One run of equal letters, or a character that stands for itself.
    void WriteLetters() {
        const char16_t letter = AsciiLower(pattern_.front());
        std::size_t run = 1;
        while (run < pattern_.size() && AsciiLower(pattern_[run]) == letter)
            ++run;
        const std::size_t used = WriteField(letter, run);
        if (used == 0) {
            text_ += pattern_.front();
            pattern_.remove_prefix(1);
            return;
        }
        after_hour_ = letter == u'h';
        pattern_.remove_prefix(used);
    }

    // How many letters of the run were used; 0: the letter has no meaning here.
    std::size_t WriteField(char16_t letter, std::size_t run) {
        switch (letter) {
        case u'd':
            return WriteDay(std::min<std::size_t>(run, 6));
        case u'm':
            return WriteMonth(std::min<std::size_t>(run, 4));
        case u'y':
            return WriteYear(run);
        case u'w':
            return WriteWeek(std::min<std::size_t>(run, 2));
        case u'q':
            text_ += Digits((civil_.month + 2) / 3, 1);
            return 1;
        case u'h':
            return WriteNumber(half_day_ ? TwelveHour(civil_.hour) : civil_.hour, run);
        case u'n':
            return WriteNumber(civil_.minute, run);
        case u's':
            return WriteNumber(civil_.second, run);
        case u'c':
            text_ += FormatGeneralDate(days_);
            return 1;
        case u't':
            if (run < 5) return 0;
            text_ += LongTime(civil_);
            return 5;
        default:
            return 0;
        }
    }

    std::size_t WriteNumber(int value, std::size_t run) {
        const std::size_t used = std::min<std::size_t>(run, 2);
        text_ += Digits(value, static_cast<int>(used));
        return used;
    }

    std::size_t WriteDay(std::size_t run) {
        const std::u16string_view weekday = kWeekdayNames[static_cast<std::size_t>(Weekday(days_))];
        if (run <= 2) return WriteNumber(civil_.day, run);
        if (run == 3) text_ += weekday.substr(0, 3);
        if (run == 4) text_ += weekday;
        if (run == 5) text_ += ShortDate(civil_);
        if (run == 6) text_ += FormatDate(days_, u"Long Date");
        return run;
    }

    // "m" right after the hours means minutes.
    std::size_t WriteMonth(std::size_t run) {
        const std::u16string_view month = kMonthNames[static_cast<std::size_t>(civil_.month - 1)];
        if (run <= 2) return WriteNumber(after_hour_ ? civil_.minute : civil_.month, run);
        text_ += run == 3 ? month.substr(0, 3) : month;
        return run;
    }

    std::size_t WriteYear(std::size_t run) {
        if (run >= 3) {
            text_ += Digits(civil_.year, 4);
            return std::min<std::size_t>(run, 4);
        }
        text_ += run == 2 ? Digits(civil_.year % 100, 2) : Digits(DayOfYear(civil_), 1);
        return run;
    }

    std::size_t WriteWeek(std::size_t run) {
        text_ += Digits(run == 2 ? WeekOfYear(civil_, days_) : Weekday(days_) + 1, 1);
        return run;
    }

    double days_;
    CivilDateTime civil_;
    std::u16string_view pattern_;
    bool half_day_;
    bool after_hour_ = false;
    std::u16string text_;
};

struct NamedFormat {
    std::u16string_view name;
    std::u16string_view pattern;
};

constexpr NamedFormat kNamedFormats[] = {
    {u"General Date", u"c"},        {u"Long Date", u"dddd, mmmm d, yyyy"},
    {u"Medium Date", u"dd-mmm-yy"}, {u"Short Date", u"m/d/yyyy"},
    {u"Long Time", u"ttttt"},       {u"Medium Time", u"hh:nn AM/PM"},
    {u"Short Time", u"hh:nn"},
};

std::u16string_view PatternOf(std::u16string_view format) {
    for (const NamedFormat& named : kNamedFormats)
        if (SameWord(named.name, format)) return named.pattern;
    return format;
}

}  // namespace

std::u16string FormatGeneralDate(double days) {
    const auto civil = CivilFromDays(days);
    if (!civil) return FormatNumber(days);
    const bool midnight = civil->hour == 0 && civil->minute == 0 && civil->second == 0;
    const CivilDateTime origin;
    const bool day_zero =
        civil->year == origin.year && civil->month == origin.month && civil->day == origin.day;
    if (day_zero) return LongTime(*civil);
    return midnight ? ShortDate(*civil) : ShortDate(*civil) + u" " + LongTime(*civil);
}

std::u16string FormatDate(double days, std::u16string_view format) {
    const auto civil = CivilFromDays(days);
    if (!civil) return FormatNumber(days);
    // The day that the pattern's weekday is taken from is the one that rounding to seconds gave.
    return PatternWriter(DaysFromCivil(*civil), *civil, PatternOf(format)).Write();
}

}  // namespace jet
