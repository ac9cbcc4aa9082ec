// TableDesign from a definition and back: what a program sees of what the file keeps.
#pragma once

#include "jet/rows/file_context.h"
#include "jet/rows/table_definition.h"
#include "jet/tables/property_blob.h"
#include "jet/values/schema.h"

namespace jet {

// Positions of definition.columns in the order shown to a user.
std::vector<std::size_t> ShownOrder(const TableDefinition& definition);

// `positions` is ShownOrder(definition).
TableDesign DesignOf(const FileContext& file, const TableDefinition& definition,
                     const std::vector<std::size_t>& positions, const PropertyBlob& properties,
                     std::u16string name);

bool IsMaintainable(const FileContext& file, const TableDefinition& definition,
                    const RealIndex& index);

}  // namespace jet
