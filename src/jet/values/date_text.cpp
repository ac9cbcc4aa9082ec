// Reading dates. The text becomes pieces (numbers, words, separators); the time is taken out; what
// remains is one, two or three pieces whose order decides.
#include "jet/values/calendar_names.h"
#include "jet/values/conversions.h"
#include "jet/values/system_clock.h"

#include <chrono>
#include <utility>
#include <vector>

namespace jet {
namespace {

enum class PieceKind : std::uint8_t { kNumber, kMonth, kWeekday, kAm, kPm, kColon, kSeparator };

struct Piece {
    PieceKind kind = PieceKind::kNumber;
    int value = 0;
};

constexpr std::size_t kMaxDateText = 100;
constexpr std::size_t kMaxPartDigits = 4;

// 1-based place of `word` among `names`, whole or as its first three letters; 0: none.
template <std::size_t N>
int FindName(const std::array<std::u16string_view, N>& names, std::u16string_view word) {
    for (std::size_t i = 0; i < N; ++i)
        if (SameWord(word, names[i]) || SameWord(word, names[i].substr(0, 3)))
            return static_cast<int>(i) + 1;
    return 0;
}

std::optional<Piece> WordPiece(std::u16string_view word) {
    if (SameWord(word, u"AM") || SameWord(word, u"A")) return Piece{PieceKind::kAm, 0};
    if (SameWord(word, u"PM") || SameWord(word, u"P")) return Piece{PieceKind::kPm, 0};
    if (const int month = FindName(kMonthNames, word); month != 0)
        return Piece{PieceKind::kMonth, month};
    if (SameWord(word, u"Sept")) return Piece{PieceKind::kMonth, 9};
    if (const int weekday = FindName(kWeekdayNames, word); weekday != 0)
        return Piece{PieceKind::kWeekday, weekday};
    return std::nullopt;
}

std::size_t RunLength(std::u16string_view text, bool (*belongs)(char16_t)) {
    std::size_t length = 0;
    while (length < text.size() && belongs(text[length]))
        ++length;
    return length;
}

std::optional<Piece> NumberPiece(std::u16string_view digits) {
    if (digits.size() > kMaxPartDigits) return std::nullopt;
    int value = 0;
    for (const char16_t c : digits)
        value = value * 10 + (c - u'0');
    return Piece{PieceKind::kNumber, value};
}

bool IsDateSeparator(char16_t c) {
    return c == u'/' || c == u'-' || c == u',';
}

// nullopt: a character or word that cannot be part of a date.
std::optional<std::vector<Piece>> SplitDate(std::u16string_view text) {
    std::vector<Piece> pieces;
    while (!text.empty()) {
        std::size_t length = 1;
        std::optional<Piece> piece;
        if (IsAsciiDigit(text.front())) {
            length = RunLength(text, IsAsciiDigit);
            piece = NumberPiece(text.substr(0, length));
        } else if (IsAsciiLetter(text.front())) {
            length = RunLength(text, IsAsciiLetter);
            piece = WordPiece(text.substr(0, length));
        } else if (text.front() == u':') {
            piece = Piece{PieceKind::kColon, 0};
        } else if (IsDateSeparator(text.front())) {
            piece = Piece{PieceKind::kSeparator, 0};
        } else if (IsBlank(text.front())) {
            text.remove_prefix(1);
            continue;
        }
        if (!piece) return std::nullopt;
        pieces.push_back(*piece);
        text.remove_prefix(length);
    }
    return pieces;
}

struct TimeOfDay {
    int hour = 0;
    int minute = 0;
    int second = 0;
};

bool KindAt(const std::vector<Piece>& pieces, std::size_t at, PieceKind kind) {
    return at < pieces.size() && pieces[at].kind == kind;
}

bool ApplyHalfOfDay(TimeOfDay& time, PieceKind half) {
    if (half == PieceKind::kPm) {
        if (time.hour < 12) time.hour += 12;
        return true;
    }
    if (time.hour > 12) return false;
    if (time.hour == 12) time.hour = 0;
    return true;
}

// Where a time begins: a number before a colon or before AM or PM. pieces.size(): none.
std::size_t FindTime(const std::vector<Piece>& pieces) {
    for (std::size_t i = 0; i < pieces.size(); ++i)
        if (pieces[i].kind == PieceKind::kNumber &&
            (KindAt(pieces, i + 1, PieceKind::kColon) || KindAt(pieces, i + 1, PieceKind::kAm) ||
             KindAt(pieces, i + 1, PieceKind::kPm)))
            return i;
    return pieces.size();
}

// Takes the time out of `pieces`; nullopt: not a valid time.
std::optional<TimeOfDay> TakeTime(std::vector<Piece>& pieces, std::size_t begin) {
    TimeOfDay time;
    time.hour = pieces[begin].value;
    std::size_t end = begin + 1;
    for (int* part : {&time.minute, &time.second}) {
        if (!KindAt(pieces, end, PieceKind::kColon)) break;
        if (!KindAt(pieces, end + 1, PieceKind::kNumber)) return std::nullopt;
        *part = pieces[end + 1].value;
        end += 2;
    }
    if (KindAt(pieces, end, PieceKind::kAm) || KindAt(pieces, end, PieceKind::kPm))
        if (!ApplyHalfOfDay(time, pieces[end++].kind)) return std::nullopt;
    if (time.hour > 23 || time.minute > 59 || time.second > 59) return std::nullopt;
    pieces.erase(pieces.begin() + static_cast<std::ptrdiff_t>(begin),
                 pieces.begin() + static_cast<std::ptrdiff_t>(end));
    return time;
}

// Two digits: 00..29 are 2000..2029, 30..99 are 1930..1999.
int FullYear(int year) {
    if (year < 30) return year + 2000;
    return year < 100 ? year + 1900 : year;
}

std::optional<CivilDateTime> RealDate(int year, int month, int day) {
    using namespace std::chrono;
    year = FullYear(year);
    if (month < 1 || month > 12 || day < 1 || day > 31) return std::nullopt;
    const year_month_day date(std::chrono::year(year),
                              std::chrono::month(static_cast<unsigned>(month)),
                              std::chrono::day(static_cast<unsigned>(day)));
    if (!date.ok()) return std::nullopt;
    CivilDateTime civil;
    civil.year = year;
    civil.month = month;
    civil.day = day;
    return civil;
}

using DateChoice = std::optional<CivilDateTime>;

DateChoice FirstOf(std::initializer_list<DateChoice> choices) {
    for (const DateChoice& choice : choices)
        if (choice) return choice;
    return std::nullopt;
}

DateChoice DateOfNumbers(const std::vector<int>& n, int current_year) {
    if (n.size() == 3)
        return FirstOf(
            {RealDate(n[2], n[0], n[1]), RealDate(n[0], n[1], n[2]), RealDate(n[2], n[1], n[0])});
    if (n.size() == 2)
        return FirstOf({RealDate(current_year, n[0], n[1]), RealDate(current_year, n[1], n[0]),
                        RealDate(n[1], n[0], 1), RealDate(n[0], n[1], 1)});
    return std::nullopt;
}

DateChoice DateWithMonth(int month, const std::vector<int>& n, int current_year) {
    if (n.size() == 2) return FirstOf({RealDate(n[1], month, n[0]), RealDate(n[0], month, n[1])});
    if (n.size() == 1)
        return FirstOf({RealDate(current_year, month, n[0]), RealDate(n[0], month, 1)});
    return std::nullopt;
}

// A separator stands between two parts, never at an end and never beside another one.
bool SeparatorsInPlace(const std::vector<Piece>& pieces) {
    bool may_follow = false;
    for (const Piece& piece : pieces) {
        const bool separator = piece.kind == PieceKind::kSeparator;
        if (separator && !may_follow) return false;
        may_follow = !separator;
    }
    return pieces.empty() || may_follow;
}

DateChoice DateOfPieces(const std::vector<Piece>& pieces, int current_year) {
    if (!SeparatorsInPlace(pieces)) return std::nullopt;
    std::vector<int> numbers;
    int month = 0;
    int weekdays = 0;
    for (const Piece& piece : pieces) {
        if (piece.kind == PieceKind::kNumber) numbers.push_back(piece.value);
        if (piece.kind == PieceKind::kMonth && std::exchange(month, piece.value) != 0)
            return std::nullopt;
        if (piece.kind == PieceKind::kWeekday && ++weekdays > 1) return std::nullopt;
        if (piece.kind == PieceKind::kAm || piece.kind == PieceKind::kPm ||
            piece.kind == PieceKind::kColon)
            return std::nullopt;
    }
    return month != 0 ? DateWithMonth(month, numbers, current_year)
                      : DateOfNumbers(numbers, current_year);
}

}  // namespace

std::optional<double> ParseDate(std::u16string_view text, int current_year) {
    if (text.size() > kMaxDateText) return std::nullopt;
    auto pieces = SplitDate(text);
    if (!pieces || pieces->empty()) return std::nullopt;
    CivilDateTime civil;
    bool has_time = false;
    if (const std::size_t at = FindTime(*pieces); at < pieces->size()) {
        const auto time = TakeTime(*pieces, at);
        if (!time) return std::nullopt;
        civil.hour = time->hour;
        civil.minute = time->minute;
        civil.second = time->second;
        has_time = true;
    }
    if (!pieces->empty() || !has_time) {
        const auto date = DateOfPieces(*pieces, current_year);
        if (!date) return std::nullopt;
        civil.year = date->year;
        civil.month = date->month;
        civil.day = date->day;
    }
    return DaysFromCivil(civil);
}

bool IsDate(std::u16string_view text) {
    return ParseDate(text, CurrentYear()).has_value();
}

}  // namespace jet
