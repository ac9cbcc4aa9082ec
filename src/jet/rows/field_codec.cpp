#include "jet/rows/field_codec.h"

#include "jet/errors.h"
#include "jet/pages/rc4.h"
#include "jet/rows/long_value.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

using base::LoadLittle;
using Field = std::span<const std::byte>;

Value DecodeGuid(Field field) {
    Guid guid;
    std::memcpy(guid.bytes.data(), field.data(), guid.bytes.size());
    return Value::OfGuid(guid);
}

Value DecodeNumeric(Field field, std::uint8_t scale) {
    Numeric numeric;
    numeric.negative = (field[0] & kNumericMinus) != std::byte{0};
    numeric.scale = scale;
    for (std::size_t i = 0; i < 4; ++i)
        numeric.magnitude[i] = LoadLittle<std::uint32_t>(field.data() + 1 + 4 * i);
    return Value::Decimal(numeric);
}

}  // namespace

std::size_t FixedSize(ColumnType type) {
    switch (type) {
    case ColumnType::kByte:
        return 1;
    case ColumnType::kShort:
        return 2;
    case ColumnType::kLong:
    case ColumnType::kSingle:
        return 4;
    case ColumnType::kMoney:
    case ColumnType::kDouble:
    case ColumnType::kDate:
        return 8;
    case ColumnType::kGuid:
        return 16;
    case ColumnType::kNumeric:
        return kNumericBytes;
    default:
        return 0;
    }
}

bool IsOfType(const Value& value, ColumnType type) {
    if (value.is_null()) return type != ColumnType::kBoolean;
    switch (type) {
    case ColumnType::kBoolean:
        return value.is<bool>();
    case ColumnType::kByte:
        return value.is<std::uint8_t>();
    case ColumnType::kShort:
        return value.is<std::int16_t>();
    case ColumnType::kLong:
        return value.is<std::int32_t>();
    case ColumnType::kMoney:
        return value.is<Money>();
    case ColumnType::kSingle:
        return value.is<float>();
    case ColumnType::kDouble:
        return value.is<double>();
    case ColumnType::kDate:
        return value.is<Date>();
    case ColumnType::kText:
    case ColumnType::kMemo:
        return value.is<std::u16string>();
    case ColumnType::kGuid:
        return value.is<Guid>();
    case ColumnType::kNumeric:
        return false;  // scale and precision: see Coerce
    default:
        return value.is<Bytes>();
    }
}

void Scramble(const FileContext& file, std::span<std::byte> bytes) {
    if (file.format.jet4()) ApplyRc4(file.header.scramble_key, bytes);
}

base::Status DecodeFieldBytes(FileContext& file, const ColumnDefinition& column,
                              std::span<const std::byte> field, Value& value) {
    if (column.type == ColumnType::kText) {
        file.text.DecodeValue(field, value.MakeText());
        return {};
    }
    if (column.is_long_value()) {
        ASSIGN_OR_RETURN(Bytes bytes, ReadLongValue(file, field));
        value = column.type == ColumnType::kMemo ? Value::Text(file.text.DecodeValue(bytes))
                                                 : Value::Binary(std::move(bytes));
        return {};
    }
    if ((column.flags & kColumnScrambled) != 0) {
        Bytes bytes(field.begin(), field.end());
        Scramble(file, bytes);
        return DecodePlainField(column, bytes, value);
    }
    return DecodePlainField(column, field, value);
}

Value DecodeWholeField(const ColumnDefinition& column, std::span<const std::byte> field) {
    const std::byte* at = field.data();
    switch (column.type) {
    case ColumnType::kByte:
        return Value::Byte(std::to_integer<std::uint8_t>(*at));
    case ColumnType::kShort:
        return Value::Short(LoadLittle<std::int16_t>(at));
    case ColumnType::kLong:
        return Value::Long(LoadLittle<std::int32_t>(at));
    case ColumnType::kMoney:
        return Value::Currency(Money{LoadLittle<std::int64_t>(at)});
    case ColumnType::kSingle:
        return Value::Single(base::LoadFloat(at));
    case ColumnType::kDouble:
        return Value::Double(base::LoadDouble(at));
    case ColumnType::kDate:
        return Value::DateTime(base::LoadDouble(at));
    case ColumnType::kGuid:
        return DecodeGuid(field);
    case ColumnType::kNumeric:
        return DecodeNumeric(field, column.scale);
    default:
        return Value::Binary(Bytes(field.begin(), field.end()));
    }
}

base::Status DecodePlainField(const ColumnDefinition& column, std::span<const std::byte> field,
                              Value& value) {
    const std::size_t size = FixedSize(column.type);
    if (field.size() < size) return Damaged("a field is shorter than its type");
    value = DecodeWholeField(column, size == 0 ? field : field.first(size));
    return {};
}

base::Status DecodeField(FileContext& file, const ColumnDefinition& column, const RowView& row,
                         Value& value) {
    const bool bit = row.Bit(column.number);
    if (column.type == ColumnType::kBoolean) {
        value = Value::Boolean(bit);
        return {};
    }
    if (!bit) {
        value = Value::Null();
        return {};
    }
    const auto field = row.Field(column);
    if (!field) return Damaged("a row's fields lie outside of it");
    return DecodeFieldBytes(file, column, *field, value);
}

}  // namespace jet
