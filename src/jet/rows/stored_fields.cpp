#include "jet/rows/stored_fields.h"

#include "jet/errors.h"
#include "jet/rows/field_codec.h"

#include <cassert>
#include <cstring>

namespace jet {
namespace {

constexpr std::size_t kHead = 2;
constexpr std::uint16_t kNone = 0xFFFF;  // no field of a page is that long

}  // namespace

base::Status AppendStoredField(const ColumnDefinition& column, const RowView& row,
                               std::vector<std::byte>& fields) {
    std::span<const std::byte> bytes;
    const bool is_set = row.Bit(column.number);
    if (is_set && column.type != ColumnType::kBoolean) {
        const auto field = row.Field(column);
        if (!field) return Damaged("a row's fields lie outside of it");
        bytes = *field;
    }
    const auto size = is_set ? static_cast<std::uint16_t>(bytes.size()) : kNone;
    const std::size_t at = fields.size();
    fields.resize(at + kHead + bytes.size());
    base::StoreLittle(fields.data() + at, size);
    if (!bytes.empty()) std::memcpy(fields.data() + at + kHead, bytes.data(), bytes.size());
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
        at += kHead + (size == kNone ? 0 : size);
    }
    const std::uint16_t size = size_at(at);
    if (size == kNone) return std::nullopt;
    return fields.subspan(at + kHead, size);
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
    Value value;
    if (!field) return value;
    if (column.type == ColumnType::kText) {
        text_.DecodeValue(*field, value.MakeText());
        return value;
    }
    [[maybe_unused]] const base::Status decoded = DecodePlainField(column, *field, value);
    assert(decoded.ok());  // CanDecode
    return value;
}

}  // namespace jet
