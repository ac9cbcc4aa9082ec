// Fields of a row put away in the form in which the row stores them, and their values later, when
// row, table and file may be gone.
#pragma once

#include "jet/rows/field_bytes.h"
#include "jet/rows/row_view.h"
#include "jet/rows/table_definition.h"
#include "jet/text/text_codec.h"
#include "jet/values/value.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace jet {

// Appends the field `column` of a row as it stands in it. Damage: the row's fields lie outside of
// it.
base::Status AppendStoredField(const ColumnDefinition& column, const RowView& row,
                               FieldBytes& fields);
// The bytes of the `place`th of these fields; nullopt: none.
std::optional<std::span<const std::byte>> StoredField(std::span<const std::byte> fields,
                                                      std::size_t place);

// Gives the values of such fields of some columns. Owns what it needs for that; any thread may use
// it.
class StoredFieldDecoder {
public:
    // Whether the stored bytes of each field are enough, and surely are a value: not so for long
    // values, which lie elsewhere, and where a field may be shorter than its type.
    static bool CanDecode(const ColumnDefinition& column);

    explicit StoredFieldDecoder(const TextCodec& text) : text_(text) {}
    // Takes another column, which is to be decoded from the `place`th field. Requires: CanDecode.
    void Add(const ColumnDefinition& column, std::size_t place) {
        columns_.push_back({column, place});
    }
    // The value of the column that was added as the `number`th, from 0.
    Value Read(std::span<const std::byte> fields, std::size_t number) const;

private:
    struct Column {
        ColumnDefinition definition;
        std::size_t place;
    };

    TextCodec text_;
    std::vector<Column> columns_;
};

}  // namespace jet
