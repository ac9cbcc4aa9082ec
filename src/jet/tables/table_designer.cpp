#include "jet/tables/table_designer.h"

#include "jet/index/key_encoder.h"

#include <algorithm>
#include <numeric>

namespace jet {
namespace {

constexpr std::uint8_t kCompressedText = 0x01;

// nullopt: there is none, or it is empty.
std::optional<std::u16string> TextProperty(const PropertyBlob& properties,
                                           std::u16string_view column, std::u16string_view name) {
    auto text = properties.Text(column, name);
    if (text && text->empty()) text.reset();
    return text;
}

ColumnDesign ColumnDesignOf(const FileContext& file, const ColumnDefinition& column,
                            const PropertyBlob& properties) {
    ColumnDesign design;
    design.name = column.name;
    design.type = column.type;
    if (column.type == ColumnType::kText)
        design.size = file.format.jet4() ? column.length / 2 : column.length;
    else if (column.type == ColumnType::kBinary || column.type == ColumnType::kFixedBinary)
        design.size = column.length;
    if (column.type == ColumnType::kNumeric) {
        design.precision = column.precision;
        design.scale = column.scale;
    }
    design.autonumber = column.is_autonumber();
    design.compressed = column.is_text() && (column.extended_flags & kCompressedText) != 0;
    design.fixed_text = column.type == ColumnType::kText && column.is_fixed();
    design.required = properties.Boolean(column.name, u"Required").value_or(false);
    design.allow_zero_length = properties.Boolean(column.name, u"AllowZeroLength").value_or(true);
    design.default_value = TextProperty(properties, column.name, u"DefaultValue");
    design.validation_rule = TextProperty(properties, column.name, u"ValidationRule");
    design.validation_text = TextProperty(properties, column.name, u"ValidationText");
    return design;
}

IndexDesign IndexDesignOf(const FileContext& file, const TableDefinition& definition,
                          const std::vector<std::size_t>& positions, const LogicalIndex& logical) {
    const RealIndex& real = definition.real_indexes[logical.real];
    IndexDesign design;
    design.name = logical.name;
    design.primary = logical.kind == IndexKind::kPrimary;
    design.unique = real.unique();
    design.required = real.required();
    design.ignore_nulls = real.ignore_nulls();
    design.maintainable = IsMaintainable(file, definition, real);
    for (const RealIndexColumn& column : real.columns) {
        const auto found = std::ranges::find_if(positions, [&](std::size_t position) {
            return definition.columns[position].number == column.column;
        });
        design.columns.push_back(
            {static_cast<std::size_t>(found - positions.begin()), column.ascending});
    }
    return design;
}

}  // namespace

std::vector<std::size_t> ShownOrder(const TableDefinition& definition) {
    std::vector<std::size_t> positions(definition.columns.size());
    std::iota(positions.begin(), positions.end(), std::size_t{0});
    std::ranges::sort(positions, {}, [&](std::size_t position) {
        const ColumnDefinition& column = definition.columns[position];
        return std::pair(column.ordinal, column.number);
    });
    return positions;
}

bool IsMaintainable(const FileContext& file, const TableDefinition& definition,
                    const RealIndex& index) {
    return std::ranges::all_of(index.columns, [&](const RealIndexColumn& column) {
        const ColumnDefinition* found = definition.FindColumn(column.column);
        return found != nullptr && CanEncodeKey(file, *found);
    });
}

TableDesign DesignOf(const FileContext& file, const TableDefinition& definition,
                     const std::vector<std::size_t>& positions, const PropertyBlob& properties,
                     std::u16string name) {
    TableDesign design;
    design.name = std::move(name);
    for (const std::size_t position : positions)
        design.columns.push_back(ColumnDesignOf(file, definition.columns[position], properties));
    for (const LogicalIndex& index : definition.logical_indexes)
        design.indexes.push_back(IndexDesignOf(file, definition, positions, index));
    design.validation_rule = TextProperty(properties, {}, u"ValidationRule");
    design.validation_text = TextProperty(properties, {}, u"ValidationText");
    return design;
}

}  // namespace jet
