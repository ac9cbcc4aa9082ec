#include "jet/rows/stored_fields.h"

#include "jet/errors.h"
#include "jet/rows/field_codec.h"

namespace jet {

base::Status AppendStoredField(const ColumnDefinition& column, const RowView& row,
                               FieldBytes& fields) {
    if (!row.Bit(column.number)) {
        fields.AddNone();
    } else if (column.type == ColumnType::kBoolean) {
        fields.Add({});
    } else {
        const auto field = row.Field(column);
        if (!field) return Damaged("a row's fields lie outside of it");
        fields.Add(*field);
    }
    return {};
}

std::optional<std::span<const std::byte>> StoredField(std::span<const std::byte> fields,
                                                      std::size_t place) {
    const auto size_at = [&](std::size_t at) {
        return base::LoadLittle<std::uint16_t>(fields.data() + at);
    };
    std::size_t at = 0;
    for (; place > 0; --place) {
        const std::uint16_t size = size_at(at);
        at += FieldBytes::kHead + (size == FieldBytes::kNone ? 0 : size);
    }
    const std::uint16_t size = size_at(at);
    if (size == FieldBytes::kNone) return std::nullopt;
    return fields.subspan(at + FieldBytes::kHead, size);
}

bool StoredFieldDecoder::CanDecode(const ColumnDefinition& column) {
    if (column.type == ColumnType::kBoolean || column.type == ColumnType::kText) return true;
    if (column.is_long_value() || (column.flags & kColumnScrambled) != 0) return false;
    return column.is_fixed() && column.length >= FixedSize(column.type);
}

Value StoredFieldDecoder::Read(std::span<const std::byte> fields, std::size_t number) const {
    const auto& [column, place] = columns_[number];
    const auto field = StoredField(fields, place);
    if (column.type == ColumnType::kBoolean) return Value::Boolean(field.has_value());
    if (!field) return Value::Null();
    if (column.type != ColumnType::kText) return DecodeWholeField(column, *field);
    Value value;
    text_.DecodeValue(*field, value.MakeText());
    return value;
}

}  // namespace jet
