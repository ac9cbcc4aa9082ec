#include "jet/errors.h"
#include "jet/sql/functions/format_number.h"
#include "jet/sql/functions/functions.h"
#include "jet/values/coerce.h"
#include "jet/values/conversions.h"
#include "jet/values/guid_text.h"

#include <cmath>
#include <random>

namespace jet::sql {
namespace {

using base::Result;

// As a column of the type would take it; out of range is Overflow here.
template <ColumnType Type>
Result<Value> Convert(Arguments a, EvalContext&) {
    ColumnDesign column;
    column.type = Type;
    auto converted = Coerce(a[0], column);
    if (Is(converted.status(), ErrorNumber::kNumericOverflow))
        return JetError(ErrorNumber::kOverflow);
    return converted;
}

Result<Value> CDate(Arguments a, EvalContext& context) {
    ASSIGN_OR_RETURN(const double days, DateArgument(a[0], context));
    return Value::DateTime(days);
}

Result<Value> CStr(Arguments a, EvalContext&) {
    return Value::Text(ToText(a[0]));
}
Result<Value> CVar(Arguments a, EvalContext&) {
    return a[0];
}

// A blank stands where a minus would, and no zero before the point.
Result<Value> Str(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const double number, NumberArgument(a[0]));
    std::u16string text = FormatNumber(std::fabs(number));
    if (text.starts_with(u"0.")) text.erase(0, 1);
    return Value::Text((number < 0 ? u"-" : u" ") + text);
}

Result<Value> IsNullCall(Arguments a, EvalContext&) {
    return Value::Boolean(a[0].is_null());
}
Result<Value> IsEmptyCall(Arguments, EvalContext&) {
    return Value::Boolean(false);
}

Result<Value> IsNumericCall(Arguments a, EvalContext&) {
    if (const auto* text = a[0].get_if<std::u16string>()) return Value::Boolean(IsNumeric(*text));
    const bool other = a[0].is_null() || a[0].is<Date>() || a[0].is<Bytes>() || a[0].is<Guid>();
    return Value::Boolean(!other);
}

Result<Value> IsDateCall(Arguments a, EvalContext&) {
    if (const auto* text = a[0].get_if<std::u16string>()) return Value::Boolean(IsDate(*text));
    return Value::Boolean(a[0].is<Date>());
}

// Format(value [, format])
Result<Value> Format(Arguments a, EvalContext& context) {
    if (a[0].is_null()) return Value::Text(u"");
    const std::u16string format = a.size() > 1 ? ToText(a[1]) : std::u16string();
    if (format.empty()) return Value::Text(ToText(a[0]));
    if (format.size() > 1000) return JetError(ErrorNumber::kExpressionTooComplex);
    if (const auto* date = a[0].get_if<Date>()) return Value::Text(FormatDate(date->days, format));
    if (const auto* text = a[0].get_if<std::u16string>()) {
        if (const auto days = ParseDate(*text, context.session->current_year()))
            return Value::Text(FormatDate(*days, format));
        const auto number = ParseNumber(*text);
        return Value::Text(number ? FormatNumberAs(*number, format) : *text);
    }
    ASSIGN_OR_RETURN(const double number, NumberArgument(a[0]));
    // A number is shown by a date's format as the date it stands for.
    const bool date_format = FormatNumberAs(0, format) == FormatNumberAs(123456789, format);
    if (date_format && CivilFromDays(number)) return Value::Text(FormatDate(number, format));
    return Value::Text(FormatNumberAs(number, format));
}

Result<Value> GenGuid(Arguments, EvalContext&) {
    static std::random_device source;
    Guid guid;
    for (std::byte& b : guid.bytes)
        b = static_cast<std::byte>(source() & 0xFF);
    guid.bytes[7] = (guid.bytes[7] & std::byte{0x0F}) | std::byte{0x40};  // version 4: random
    guid.bytes[8] = (guid.bytes[8] & std::byte{0x3F}) | std::byte{0x80};
    return Value::OfGuid(guid);
}

constexpr Function kConvertFunctions[] = {
    {u"CBool", 1, 1, FunctionKind::kStrict, Convert<ColumnType::kBoolean>},
    {u"CByte", 1, 1, FunctionKind::kStrict, Convert<ColumnType::kByte>},
    {u"CCur", 1, 1, FunctionKind::kStrict, Convert<ColumnType::kMoney>},
    {u"CDate", 1, 1, FunctionKind::kStrict, CDate},
    {u"CVDate", 1, 1, FunctionKind::kStrict, CDate},
    {u"CDbl", 1, 1, FunctionKind::kStrict, Convert<ColumnType::kDouble>},
    {u"CInt", 1, 1, FunctionKind::kStrict, Convert<ColumnType::kShort>},
    {u"CLng", 1, 1, FunctionKind::kStrict, Convert<ColumnType::kLong>},
    {u"CSng", 1, 1, FunctionKind::kStrict, Convert<ColumnType::kSingle>},
    {u"CStr", 1, 1, FunctionKind::kStrict, CStr},
    {u"CVar", 1, 1, FunctionKind::kPlain, CVar},
    {u"Format", 1, 2, FunctionKind::kPlain, Format},
    {u"GenGUID", 0, 0, FunctionKind::kChanging, GenGuid},
    {u"IsDate", 1, 1, FunctionKind::kPlain, IsDateCall},
    {u"IsEmpty", 1, 1, FunctionKind::kPlain, IsEmptyCall},
    {u"IsNull", 1, 1, FunctionKind::kPlain, IsNullCall},
    {u"IsNumeric", 1, 1, FunctionKind::kPlain, IsNumericCall},
    {u"Str", 1, 1, FunctionKind::kStrict, Str},
};

}  // namespace

std::span<const Function> ConvertFunctions() {
    return kConvertFunctions;
}

}  // namespace jet::sql
