#include "jet/sql/functions/functions.h"

#include "jet/errors.h"
#include "jet/text/like.h"
#include "jet/values/calendar_names.h"
#include "jet/values/conversions.h"
#include "jet/values/value_number.h"

#include <cmath>
#include <limits>

namespace jet::sql {
namespace {

using base::Result;

constexpr Function kLazy[] = {
    {u"IIf", 3, 3, FunctionKind::kIIf},
    {u"Choose", 2, 1000, FunctionKind::kChoose},
    {u"Switch", 2, 1000, FunctionKind::kSwitch},
};

Result<Value> CallPatternOfStars(Arguments arguments, EvalContext&) {
    return Value::Text(PatternOfStars(ToText(arguments[0])));
}

// No text of a statement can name these.
constexpr Function kInternal[] = {
    {kPatternOfStars, 1, 1, FunctionKind::kStrict, CallPatternOfStars},
};

}  // namespace

const Function* FindFunction(std::u16string_view name) {
    for (const auto& family :
         {std::span<const Function>(kLazy), TextFunctions(), DateFunctions(), NumberFunctions(),
          ConvertFunctions(), std::span<const Function>(kInternal)})
        for (const Function& function : family)
            if (SameWord(function.name, name)) return &function;
    return nullptr;
}

Result<double> NumberArgument(const Value& value) {
    const auto number = NumberOf(value);
    if (!number) return JetError(ErrorNumber::kTypeMismatch);
    return *number;
}

Result<std::int32_t> WholeArgument(const Value& value) {
    ASSIGN_OR_RETURN(const double number, NumberArgument(value));
    const double rounded = std::nearbyint(number);
    if (!(std::fabs(rounded) <= std::numeric_limits<std::int32_t>::max()))
        return JetError(ErrorNumber::kOverflow);
    return static_cast<std::int32_t>(rounded);
}

Result<double> DateArgument(const Value& value, const EvalContext& context) {
    std::optional<double> days;
    if (const auto* text = value.get_if<std::u16string>())
        days = ParseDate(*text, context.session->current_year());
    if (!days) days = NumberOf(value);
    if (!days) return JetError(ErrorNumber::kTypeMismatch);
    if (!CivilFromDays(*days)) return JetError(ErrorNumber::kOverflow);
    return *days;
}

}  // namespace jet::sql
