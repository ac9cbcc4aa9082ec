#include "history/change_names.h"

#include "base/unicode.h"
#include "jet/text/names.h"

namespace history {
namespace {

// The catalogue's table of pinball tables.
constexpr std::u16string_view kPinballTables = u"Tables";

}  // namespace

std::u16string GroupedNumber(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3;) {
        at -= 3;
        digits.insert(at, ",");
    }
    return base::ToUtf16(digits);
}

bool AreTables(const Change& change) {
    return change.tables.size() == 1 && jet::SameName(change.tables.front().table, kPinballTables);
}

std::u16string RowsText(const Change& change) {
    const std::uint64_t rows = change.rows();
    return GroupedNumber(rows) + (AreTables(change) ? u" table" : u" row") +
           (rows == 1 ? u"" : u"s");
}

std::u16string DisplayName(const Change& change, std::u16string_view name) {
    if (name.empty()) name = change.label.name;
    std::u16string text(name.empty() ? kUnnamed : name);
    if (change.rows() != 0) text += u" (" + RowsText(change) + u")";
    return text;
}

}  // namespace history
