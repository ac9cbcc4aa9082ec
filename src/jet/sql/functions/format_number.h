// Numbers as text by a named format ("Currency") or a pattern ("#,##0.00").
#pragma once

#include <string>
#include <string_view>

namespace jet::sql {

// A pattern has up to three sections, for positive, negative and zero numbers, with semicolons
// between them.
std::u16string FormatNumberAs(double number, std::u16string_view format);

}  // namespace jet::sql
