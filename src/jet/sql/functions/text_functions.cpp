#include "base/ansi_text.h"
#include "base/letter_case.h"
#include "jet/errors.h"
#include "jet/sql/functions/functions.h"
#include "jet/text/collation.h"
#include "jet/values/calendar_names.h"
#include "jet/values/conversions.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <span>

namespace jet::sql {
namespace {

using base::Result;

base::Status BadArgument() {
    return JetError(ErrorNumber::kInvalidArgument);
}

Result<std::size_t> CountArgument(const Value& value) {
    ASSIGN_OR_RETURN(const std::int32_t count, WholeArgument(value));
    if (count < 0) return BadArgument();
    return static_cast<std::size_t>(count);
}

Result<Value> Chr(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const std::int32_t code, WholeArgument(a[0]));
    if (code < 0 || code > 255) return BadArgument();
    return Value::Text(std::u16string(1, base::AnsiCharacter(static_cast<std::byte>(code))));
}

Result<Value> ChrW(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const std::int32_t code, WholeArgument(a[0]));
    if (code < -32768 || code > 65535) return BadArgument();
    return Value::Text(std::u16string(1, static_cast<char16_t>(code)));
}

Result<char16_t> FirstUnit(const Value& value) {
    const std::u16string text = ToText(value);
    if (text.empty()) return BadArgument();
    return text.front();
}

Result<Value> Asc(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const char16_t unit, FirstUnit(a[0]));
    const std::byte byte = base::AnsiByte(unit);
    // A control character of 0x80 to 0x9F, which is not in the code page, gives its own number.
    if (byte == std::byte{'?'} && unit < 0x100) return Value::Long(unit);
    return Value::Long(std::to_integer<std::int32_t>(byte));
}

Result<Value> AscW(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const char16_t unit, FirstUnit(a[0]));
    return Value::Long(static_cast<std::int16_t>(unit));
}

Result<Value> Len(Arguments a, EvalContext&) {
    return Value::Long(static_cast<std::int32_t>(ToText(a[0]).size()));
}

Result<Value> Left(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const std::size_t count, CountArgument(a[1]));
    return Value::Text(ToText(a[0]).substr(0, count));
}

Result<Value> Right(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const std::size_t count, CountArgument(a[1]));
    std::u16string text = ToText(a[0]);
    if (count < text.size()) text.erase(0, text.size() - count);
    return Value::Text(std::move(text));
}

Result<Value> Mid(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const std::size_t start, CountArgument(a[1]));
    if (start == 0) return BadArgument();
    std::size_t count = std::u16string::npos;
    if (a.size() > 2) {
        ASSIGN_OR_RETURN(count, CountArgument(a[2]));
    }
    const std::u16string text = ToText(a[0]);
    if (start > text.size()) return Value::Text(u"");
    return Value::Text(text.substr(start - 1, count));
}

// What letter case and the compare argument (0: exact) make of a text that is searched.
std::u16string Searchable(const Value& value, bool exact) {
    return exact ? ToText(value) : base::ToLower(ToText(value));
}

Result<bool> IsExact(Arguments a, std::size_t at) {
    if (at >= a.size()) return false;
    ASSIGN_OR_RETURN(const std::int32_t compare, WholeArgument(a[at]));
    return compare == 0;
}

// InStr([start,] text, wanted [, compare])
Result<Value> InStr(Arguments a, EvalContext&) {
    std::size_t start = 1;
    const bool has_start = a.size() == 4 || (a.size() == 3 && !a[0].is<std::u16string>());
    if (has_start) {
        ASSIGN_OR_RETURN(start, CountArgument(a[0]));
        if (start == 0) return BadArgument();
        a = a.subspan(1);
    }
    ASSIGN_OR_RETURN(const bool exact, IsExact(a, 2));
    const std::u16string text = Searchable(a[0], exact);
    if (start > text.size()) return Value::Long(0);
    const std::size_t at = text.find(Searchable(a[1], exact), start - 1);
    return Value::Long(at == std::u16string::npos ? 0 : static_cast<std::int32_t>(at) + 1);
}

// InStrRev(text, wanted [, start [, compare]])
Result<Value> InStrRev(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const bool exact, IsExact(a, 3));
    std::u16string text = Searchable(a[0], exact);
    if (a.size() > 2) {
        ASSIGN_OR_RETURN(const std::int32_t start, WholeArgument(a[2]));
        if (start == 0 || start < -1) return BadArgument();
        if (start > 0) text = text.substr(0, static_cast<std::size_t>(start));
    }
    const std::u16string wanted = Searchable(a[1], exact);
    // The empty text is found where the search begins.
    const std::size_t at = wanted.empty() ? text.size() - 1 : text.rfind(wanted);
    return Value::Long(at == std::u16string::npos ? 0 : static_cast<std::int32_t>(at) + 1);
}

Result<Value> LCase(Arguments a, EvalContext&) {
    return Value::Text(base::ToLower(ToText(a[0])));
}
Result<Value> UCase(Arguments a, EvalContext&) {
    return Value::Text(base::ToUpper(ToText(a[0])));
}

std::u16string TrimSpaces(std::u16string text, bool left, bool right) {
    if (right) text.erase(text.find_last_not_of(u' ') + 1);
    if (left) text.erase(0, text.find_first_not_of(u' '));
    return text;
}

Result<Value> Trim(Arguments a, EvalContext&) {
    return Value::Text(TrimSpaces(ToText(a[0]), true, true));
}
Result<Value> LTrim(Arguments a, EvalContext&) {
    return Value::Text(TrimSpaces(ToText(a[0]), true, false));
}
Result<Value> RTrim(Arguments a, EvalContext&) {
    return Value::Text(TrimSpaces(ToText(a[0]), false, true));
}

Result<Value> Repeat(std::size_t count, char16_t unit) {
    if (count > kMaxResultLength) return JetError(ErrorNumber::kExpressionTooComplex);
    return Value::Text(std::u16string(count, unit));
}

Result<Value> Space(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const std::size_t count, CountArgument(a[0]));
    return Repeat(count, u' ');
}

// The character is given as its code or as the first of a text.
Result<Value> String(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(const std::size_t count, CountArgument(a[0]));
    if (a[1].is<std::u16string>()) {
        ASSIGN_OR_RETURN(const char16_t unit, FirstUnit(a[1]));
        return Repeat(count, unit);
    }
    ASSIGN_OR_RETURN(const std::int32_t code, WholeArgument(a[1]));
    const Value ansi[] = {Value::Long(code & 0xFF)};
    ASSIGN_OR_RETURN(const Value unit, Chr(ansi, context));
    return Repeat(count, unit.as<std::u16string>().front());
}

Result<Value> StrComp(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const bool exact, IsExact(a, 2));
    const std::u16string first = ToText(a[0]);
    const std::u16string second = ToText(a[1]);
    const std::weak_ordering order = exact ? first <=> second : CompareText(first, second);
    return Value::Long(order < 0 ? -1 : order > 0 ? 1 : 0);
}

std::u16string ProperCase(std::u16string text) {
    bool begins = true;
    for (char16_t& unit : text) {
        unit = begins ? base::ToUpper(unit) : base::ToLower(unit);
        begins = IsBlank(unit);
    }
    return text;
}

Result<Value> StrConv(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const std::int32_t kind, WholeArgument(a[1]));
    const std::u16string text = ToText(a[0]);
    if (kind == 1) return Value::Text(base::ToUpper(text));
    if (kind == 2) return Value::Text(base::ToLower(text));
    if (kind == 3) return Value::Text(ProperCase(text));
    return BadArgument();
}

// Replace(text, wanted, replacement [, start [, count [, compare]]])
Result<Value> Replace(Arguments a, EvalContext&) {
    std::size_t start = 1;
    std::size_t most = std::u16string::npos;
    if (a.size() > 3) {
        ASSIGN_OR_RETURN(start, CountArgument(a[3]));
        if (start == 0) return BadArgument();
    }
    if (a.size() > 4) {
        ASSIGN_OR_RETURN(const std::int32_t count, WholeArgument(a[4]));
        if (count >= 0) most = static_cast<std::size_t>(count);
    }
    ASSIGN_OR_RETURN(const bool exact, IsExact(a, 5));
    const std::u16string text = ToText(a[0]);
    const std::u16string searched = Searchable(a[0], exact);
    const std::u16string wanted = Searchable(a[1], exact);
    const std::u16string replacement = ToText(a[2]);
    std::u16string result;
    std::size_t from = std::min(start - 1, text.size());
    if (wanted.empty()) return Value::Text(text.substr(from));
    for (; most > 0; --most) {
        const std::size_t at = searched.find(wanted, from);
        if (at == std::u16string::npos) break;
        result.append(text, from, at - from).append(replacement);
        if (result.size() > kMaxResultLength) return JetError(ErrorNumber::kExpressionTooComplex);
        from = at + wanted.size();
    }
    return Value::Text(result.append(text, from));
}

// The number at the beginning of a text, blanks passed over; 0 when there is none.
Result<Value> Val(Arguments a, EvalContext&) {
    std::u16string text;
    for (const char16_t c : ToText(a[0]).substr(0, 300))
        if (!IsBlank(c)) text += c;
    for (std::size_t length = text.size(); length > 0; --length) {
        const std::u16string_view head = std::u16string_view(text).substr(0, length);
        const bool plain = head.find_first_not_of(u"0123456789.+-eEdD") == head.npos;
        const bool radix = head.front() == u'&';
        if (!plain && !radix) continue;
        if (const auto number = ParseNumber(head)) return Value::Double(*number);
    }
    return Value::Double(0);
}

constexpr Function kTextFunctions[] = {
    {u"Asc", 1, 1, FunctionKind::kStrict, Asc},
    {u"AscW", 1, 1, FunctionKind::kStrict, AscW},
    {u"Chr", 1, 1, FunctionKind::kStrict, Chr},
    {u"ChrW", 1, 1, FunctionKind::kStrict, ChrW},
    {u"InStr", 2, 4, FunctionKind::kStrict, InStr},
    {u"InStrRev", 2, 4, FunctionKind::kStrict, InStrRev},
    {u"LCase", 1, 1, FunctionKind::kStrict, LCase},
    {u"Left", 2, 2, FunctionKind::kStrict, Left},
    {u"Len", 1, 1, FunctionKind::kStrict, Len},
    {u"LTrim", 1, 1, FunctionKind::kStrict, LTrim},
    {u"Mid", 2, 3, FunctionKind::kStrict, Mid},
    {u"Replace", 3, 6, FunctionKind::kStrict, Replace},
    {u"Right", 2, 2, FunctionKind::kStrict, Right},
    {u"RTrim", 1, 1, FunctionKind::kStrict, RTrim},
    {u"Space", 1, 1, FunctionKind::kStrict, Space},
    {u"StrComp", 2, 3, FunctionKind::kStrict, StrComp},
    {u"StrConv", 2, 3, FunctionKind::kStrict, StrConv},
    {u"String", 2, 2, FunctionKind::kStrict, String},
    {u"Trim", 1, 1, FunctionKind::kStrict, Trim},
    {u"UCase", 1, 1, FunctionKind::kStrict, UCase},
    {u"Val", 1, 1, FunctionKind::kStrict, Val},
};

}  // namespace

std::span<const Function> TextFunctions() {
    return kTextFunctions;
}

}  // namespace jet::sql
