#include "jet/repair/copied_row.h"

#include "jet/errors.h"
#include "jet/rows/field_codec.h"
#include "jet/rows/long_value.h"

namespace jet {

base::Status CopyField(FileContext& file, const ColumnDefinition& column, const RowView& row,
                       CopiedField& field) {
    field.set = row.Bit(column.number);
    if (!field.set || column.type == ColumnType::kBoolean) return {};
    const auto bytes = row.Field(column);
    if (!bytes) return Damaged("a row's fields lie outside of it");
    if (!column.is_long_value()) {
        field.bytes.assign(bytes->begin(), bytes->end());
        return {};
    }
    ASSIGN_OR_RETURN(field.bytes, ReadLongValue(file, *bytes));
    field.in_row = (base::LoadLittle<std::uint32_t>(bytes->data()) & kLongValueInline) != 0;
    return {};
}

base::Result<CopiedRow> CopyRow(FileContext& file, const TableDefinition& table,
                                const RowView& row) {
    CopiedRow copy(table.columns.size());
    for (std::size_t i = 0; i < copy.size(); ++i)
        RETURN_IF_ERROR(CopyField(file, table.columns[i], row, copy[i]));
    return copy;
}

base::Result<Value> ValueOf(FileContext& file, const ColumnDefinition& column,
                            const CopiedField& field) {
    if (column.type == ColumnType::kBoolean) return Value::Boolean(field.set);
    if (!field.set) return Value::Null();
    if (column.type == ColumnType::kMemo) return Value::Text(file.text.DecodeValue(field.bytes));
    if (column.type == ColumnType::kOle) return Value::Binary(field.bytes);
    Value value;
    RETURN_IF_ERROR(DecodeFieldBytes(file, column, field.bytes, value));
    return value;
}

}  // namespace jet
