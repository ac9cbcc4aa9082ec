// The functions that expressions may call.
#pragma once

#include "base/status.h"
#include "jet/sql/functions/eval_context.h"
#include "jet/values/value.h"

#include <span>
#include <string_view>

namespace jet::sql {

using Arguments = std::span<const Value>;
using FunctionCode = base::Result<Value> (*)(Arguments arguments, EvalContext& context);

enum class FunctionKind : std::uint8_t {
    kStrict,    // Null when an argument is Null
    kChanging,  // strict, and of another value at each call
    kPlain,     // sees its Nulls
    kIIf,       // these three evaluate only the argument that is needed
    kChoose,
    kSwitch,
};

struct Function {
    std::u16string_view name;
    std::size_t least = 0;
    std::size_t most = 0;
    FunctionKind kind = FunctionKind::kStrict;
    FunctionCode code = nullptr;  // nullptr for the lazy kinds
};

// In any letter case. nullptr: there is no such function.
const Function* FindFunction(std::u16string_view name);

// The parts of the table, by family.
std::span<const Function> TextFunctions();
std::span<const Function> DateFunctions();
std::span<const Function> NumberFunctions();
std::span<const Function> ConvertFunctions();

// Arguments as the functions need them. 3464: the value cannot be converted.
base::Result<double> NumberArgument(const Value& value);
base::Result<std::int32_t> WholeArgument(const Value& value);
base::Result<double> DateArgument(const Value& value, const EvalContext& context);

}  // namespace jet::sql
