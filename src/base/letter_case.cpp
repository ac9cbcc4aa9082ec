#include "base/letter_case.h"

namespace base {
namespace {

// A run of capitals whose small letters lie `distance` further on; distance 1: capitals and small
// letters alternate, beginning with a capital.
struct CaseRun {
    char16_t first;
    char16_t last;
    char16_t distance;
};

constexpr CaseRun kRuns[] = {
    {0x0041, 0x005A, 32}, {0x00C0, 0x00D6, 32}, {0x00D8, 0x00DE, 32}, {0x0100, 0x012E, 1},
    {0x0132, 0x0136, 1},  {0x0139, 0x0147, 1},  {0x014A, 0x0176, 1},  {0x0179, 0x017D, 1},
    {0x01CD, 0x01DB, 1},  {0x01DE, 0x01EE, 1},  {0x01F8, 0x021E, 1},  {0x0222, 0x0232, 1},
    {0x0388, 0x038A, 37}, {0x0391, 0x03A1, 32}, {0x03A3, 0x03AB, 32}, {0x03D8, 0x03EE, 1},
    {0x0400, 0x040F, 80}, {0x0410, 0x042F, 32}, {0x0460, 0x0480, 1},  {0x048A, 0x04BE, 1},
    {0x04C1, 0x04CD, 1},  {0x04D0, 0x052E, 1},  {0x0531, 0x0556, 48}, {0x1E00, 0x1E94, 1},
    {0x1EA0, 0x1EFE, 1},  {0xFF21, 0xFF3A, 32},
};

struct CasePair {
    char16_t upper;
    char16_t lower;
};

constexpr CasePair kPairs[] = {
    {0x0178, 0x00FF}, {0x0386, 0x03AC}, {0x038C, 0x03CC}, {0x038E, 0x03CD}, {0x038F, 0x03CE},
};

constexpr bool InRun(char16_t unit, char16_t first, char16_t last, char16_t distance) {
    return unit >= first && unit <= last && (distance != 1 || (unit - first) % 2 == 0);
}

// At the end of a word only: its capital has another small letter.
constexpr char16_t kSmallFinalSigma = 0x03C2;
constexpr char16_t kCapitalSigma = 0x03A3;

template <char16_t (*Convert)(char16_t)>
std::u16string ConvertAll(std::u16string_view text) {
    std::u16string converted(text);
    for (char16_t& unit : converted)
        unit = Convert(unit);
    return converted;
}

}  // namespace

char16_t ToLower(char16_t unit) {
    for (const CaseRun& run : kRuns)
        if (InRun(unit, run.first, run.last, run.distance))
            return static_cast<char16_t>(unit + run.distance);
    for (const CasePair& pair : kPairs)
        if (unit == pair.upper) return pair.lower;
    return unit;
}

char16_t ToUpper(char16_t unit) {
    for (const CaseRun& run : kRuns)
        if (InRun(static_cast<char16_t>(unit - run.distance), run.first, run.last, run.distance))
            return static_cast<char16_t>(unit - run.distance);
    for (const CasePair& pair : kPairs)
        if (unit == pair.lower) return pair.upper;
    return unit == kSmallFinalSigma ? kCapitalSigma : unit;
}

std::u16string ToUpper(std::u16string_view text) {
    return ConvertAll<ToUpper>(text);
}

std::u16string ToLower(std::u16string_view text) {
    return ConvertAll<ToLower>(text);
}

}  // namespace base
