// PropertyBlob: the properties of a table and its columns (defaults, rules, captions) as the
// catalog keeps them in MSysObjects.LvProp. Properties that the engine does not use are kept as
// they are.
#pragma once

#include "base/status.h"
#include "jet/text/text_codec.h"
#include "jet/values/value.h"

#include <optional>
#include <string>
#include <vector>

namespace jet {

struct Property {
    std::u16string name;
    ColumnType type = ColumnType::kText;
    std::uint8_t ddl = 1;  // 1: belongs to the design
    Bytes value;
};

struct PropertyOwner {
    std::u16string column;  // empty: the table itself
    std::uint16_t block_type = 1;
    std::vector<Property> properties;
};

class PropertyBlob {
public:
    explicit PropertyBlob(const TextCodec& text) : text_(&text) {}
    static base::Result<PropertyBlob> Parse(std::span<const std::byte> blob, const TextCodec& text);
    Bytes Serialize() const;

    bool empty() const { return owners_.empty(); }
    const Property* Find(std::u16string_view column, std::u16string_view name) const;
    std::optional<bool> Boolean(std::u16string_view column, std::u16string_view name) const;
    std::optional<std::u16string> Text(std::u16string_view column, std::u16string_view name) const;

    void SetBoolean(std::u16string_view column, std::u16string_view name, bool value);
    void SetText(std::u16string_view column, std::u16string_view name, ColumnType type,
                 std::u16string_view value);
    void Remove(std::u16string_view column, std::u16string_view name);
    void RemoveColumn(std::u16string_view column);

private:
    Property& Make(std::u16string_view column, std::u16string_view name);
    base::Status ParseOwner(std::span<const std::byte> content, std::uint16_t type,
                            const std::vector<std::u16string>& names);

    const TextCodec* text_;
    std::vector<PropertyOwner> owners_;
    std::vector<std::u16string> spare_names_;  // in the list of names, used by no property
};

}  // namespace jet
