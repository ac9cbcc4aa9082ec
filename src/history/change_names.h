// What changes are called: "Purge (3,412 tables)". US English.
#pragma once

#include "base/marked_text.h"
#include "history/change_index.h"

#include <string>

namespace history {

// A change without a name is called so; a marked text.
inline constexpr std::u16string_view kUnnamed = MARKED_TEXT("HistoryTexts", "Other change");
// How the names of changes begin that put others back.
inline constexpr std::u16string_view kUndoPrefix = u"Undo ";
inline constexpr std::u16string_view kRedoPrefix = u"Redo ";
inline constexpr std::u16string_view kPutBackPrefix = u"Put Back ";

// Whether all its rows are pinball tables of the catalogue.
bool AreTables(const Change& change);
// "3,412".
std::u16string GroupedNumber(std::uint64_t number);
// How many rows, as the user calls them: "1 table", "3,412 tables" of the catalogue, otherwise
// "12 rows".
std::u16string RowsText(const Change& change);
// `name` with the number of rows; `name` empty: the change's own.
std::u16string DisplayName(const Change& change, std::u16string_view name = {});

}  // namespace history
