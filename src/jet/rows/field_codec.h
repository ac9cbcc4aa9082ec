// A column's value in the bytes of a row, and back.
#pragma once

#include "jet/rows/file_context.h"
#include "jet/rows/row_view.h"
#include "jet/values/schema.h"
#include "jet/values/value.h"

namespace jet {

// A numeric field: a byte with the sign in its highest bit, then the digits as a 16-byte number.
inline constexpr std::size_t kNumericBytes = 17;
inline constexpr std::byte kNumericMinus{0x80};

// The value of `column` in `row`; reads long values from their pages.
base::Status DecodeField(FileContext& file, const ColumnDefinition& column, const RowView& row,
                         Value& value);

// The value of a field whose bit is set, from its bytes in a row. Requires: not a boolean.
base::Status DecodeFieldBytes(FileContext& file, const ColumnDefinition& column,
                              std::span<const std::byte> field, Value& value);

// The same for types whose content alone is the value: not texts, long values and booleans.
base::Status DecodePlainField(const ColumnDefinition& column, std::span<const std::byte> field,
                              Value& value);

// The same for fields that are known to be long enough. Requires: field.size() >=
// FixedSize(column.type).
Value DecodeWholeField(const ColumnDefinition& column, std::span<const std::byte> field);

// Bytes in the row of a value of a type of fixed size; 0: the size varies, or nothing is stored
// (boolean).
std::size_t FixedSize(ColumnType type);

// True when a value of this kind is what a column of `type` stores (Null always is).
bool IsOfType(const Value& value, ColumnType type);

// XORs a scrambled column's bytes (catalog owners and permissions of Jet 4); calling it again
// undoes it.
void Scramble(const FileContext& file, std::span<std::byte> bytes);

// The bytes that a row holds for a value that is not null, long values and booleans excepted.
// Requires: the value is of the column's type. 3163: too long.
base::Result<Bytes> EncodeField(const FileContext& file, const ColumnDefinition& column,
                                const Value& value);
// The bytes of a memo or OLE value, before they are stored.
base::Result<Bytes> EncodeLongValue(const FileContext& file, const ColumnDefinition& column,
                                    const Value& value);

}  // namespace jet
