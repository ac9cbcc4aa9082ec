// Column definitions from what a program asks for.
#pragma once

#include "jet/rows/file_context.h"
#include "jet/rows/table_definition.h"
#include "jet/values/schema.h"

namespace jet {

// Checks name, type and size; 3125, 3163 family.
base::Status CheckColumn(const FileContext& file, const ColumnDesign& design);

// Adds a column at the end of the definition: number, place in the row and ordinal follow from what
// is there. The caller adds the page maps of a long value column. 3190: too many.
base::Status AppendColumn(const FileContext& file, const ColumnDesign& design,
                          TableDefinition& definition);

// Property names that a table's blob has for a column's rules.
class PropertyBlob;
void WriteColumnProperties(const ColumnDesign& design, PropertyBlob& properties);
// A validation rule, of the table where `column` is empty. nullopt leaves what is there.
void WriteRule(std::u16string_view column, const std::optional<std::u16string>& rule,
               const std::optional<std::u16string>& text, PropertyBlob& properties);

// Index flags as the format stores them.
std::uint8_t IndexFlagsOf(const FileContext& file, const IndexDesign& design);

}  // namespace jet
