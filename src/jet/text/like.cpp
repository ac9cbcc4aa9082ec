#include "jet/text/like.h"

#include "base/letter_case.h"

namespace jet {
namespace {

bool SameLetter(char16_t a, char16_t b) {
    return a == b || base::ToLower(a) == base::ToLower(b);
}

bool InRange(char16_t unit, char16_t first, char16_t last) {
    const char16_t lower = base::ToLower(unit);
    const char16_t upper = base::ToUpper(unit);
    return (unit >= first && unit <= last) || (lower >= first && lower <= last) ||
           (upper >= first && upper <= last);
}

// `set` is what stands between the brackets.
bool InSet(char16_t unit, std::u16string_view set) {
    const bool negated = !set.empty() && (set.front() == u'^' || set.front() == u'!');
    if (negated) set.remove_prefix(1);
    bool found = false;
    for (std::size_t i = 0; i < set.size() && !found; ++i) {
        if (i + 2 < set.size() && set[i + 1] == u'-') {
            found = InRange(unit, set[i], set[i + 2]);
            i += 2;
        } else {
            found = SameLetter(unit, set[i]);
        }
    }
    return found != negated;
}

// One step of the pattern other than %: how many units of it are used, and whether `unit` fits.
struct Step {
    std::size_t used = 1;
    bool fits = false;
};

Step Match(char16_t unit, std::u16string_view pattern) {
    if (pattern.front() == u'_') return {1, true};
    if (pattern.front() == u'[') {
        const std::size_t end = pattern.find(u']', 1);
        if (end != std::u16string_view::npos)
            return {end + 1, InSet(unit, pattern.substr(1, end - 1))};
    }
    return {1, SameLetter(unit, pattern.front())};
}

}  // namespace

std::u16string PatternOfStars(std::u16string_view stars) {
    std::u16string pattern;
    for (std::size_t i = 0; i < stars.size(); ++i) {
        const char16_t c = stars[i];
        const std::size_t end = c == u'[' ? stars.find(u']', i + 1) : std::u16string_view::npos;
        if (end != std::u16string_view::npos) {
            pattern += stars.substr(i, end + 1 - i);
            i = end;
        } else if (c == u'*') {
            pattern += u'%';
        } else if (c == u'?') {
            pattern += u'_';
        } else if (c == u'#') {
            pattern += u"[0-9]";
        } else if (c == u'%' || c == u'_') {
            pattern += {u'[', c, u']'};
        } else {
            pattern += c;
        }
    }
    return pattern;
}

bool Like(std::u16string_view text, std::u16string_view pattern) {
    std::size_t t = 0;
    std::size_t p = 0;
    std::size_t after_percent = std::u16string_view::npos;
    std::size_t retry_from = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == u'%') {
            after_percent = ++p;
            retry_from = t;
            continue;
        }
        if (p < pattern.size()) {
            const Step step = Match(text[t], pattern.substr(p));
            if (step.fits) {
                p += step.used;
                ++t;
                continue;
            }
        }
        if (after_percent == std::u16string_view::npos) return false;
        p = after_percent;
        t = ++retry_from;
    }
    while (p < pattern.size() && pattern[p] == u'%')
        ++p;
    return p == pattern.size();
}

}  // namespace jet
