// Fields of a file of comma-separated values (RFC 4180), as CsvReader reads them.
#pragma once

#include <string>
#include <string_view>

namespace exchange {

// Appends a text as a field: in quotes when it is empty (a field without quotes would be Null) or
// has characters that need them.
void AppendCsvText(std::string& line, std::string_view text);

// A text that spreadsheets take for a formula: it begins with = + - @, a tab or a line end, or with
// apostrophes and then one of these.
bool LooksLikeFormula(std::string_view text);

}  // namespace exchange
