#include "jet/tables/property_blob.h"

#include "base/byte_writer.h"
#include "jet/errors.h"
#include "jet/pages/byte_cursor.h"
#include "jet/pages/property_layout.h"
#include "jet/text/names.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

std::string_view Signature(const TextCodec& text) {
    return text.jet4() ? kPropertiesJet4 : kPropertiesJet3;
}

base::Status Unreadable() {
    return Damaged("the properties of a table are unreadable");
}

void AppendBlock(Bytes& blob, std::uint16_t type, const Bytes& content) {
    base::AppendLittle(blob, static_cast<std::uint32_t>(content.size() + kBlockHead));
    base::AppendLittle(blob, type);
    blob.insert(blob.end(), content.begin(), content.end());
}

void AppendName(Bytes& out, const TextCodec& text, std::u16string_view name) {
    const Bytes bytes = text.EncodeName(name).value_or(Bytes());
    base::AppendLittle(out, static_cast<std::uint16_t>(bytes.size()));
    out.insert(out.end(), bytes.begin(), bytes.end());
}

}  // namespace

base::Result<PropertyBlob> PropertyBlob::Parse(std::span<const std::byte> bytes,
                                               const TextCodec& text) {
    PropertyBlob blob(text);
    if (bytes.empty()) return blob;
    ByteCursor cursor(bytes);
    const std::string_view wanted = Signature(text);
    const auto signature = cursor.TakeBytes(wanted.size());
    if (cursor.failed() || std::memcmp(signature.data(), wanted.data(), wanted.size()) != 0)
        return Unreadable();
    std::vector<std::u16string> names;
    while (cursor.left() > 0) {
        const std::size_t size = cursor.Take<std::uint32_t>();
        const auto type = cursor.Take<std::uint16_t>();
        if (cursor.failed() || size < kBlockHead) return Unreadable();
        const auto content = cursor.TakeBytes(size - kBlockHead);
        if (cursor.failed()) return Unreadable();
        if (type != kNameList) {
            RETURN_IF_ERROR(blob.ParseOwner(content, type, names));
            continue;
        }
        ByteCursor list(content);
        while (list.left() > 0) {
            const std::size_t length = list.Take<std::uint16_t>();
            names.push_back(text.DecodeName(list.TakeBytes(length)));
            if (list.failed()) return Unreadable();
        }
    }
    for (const std::u16string& name : names) {
        const auto uses = [&](const PropertyOwner& owner) {
            return std::ranges::find(owner.properties, name, &Property::name) !=
                   owner.properties.end();
        };
        if (std::ranges::none_of(blob.owners_, uses)) blob.spare_names_.push_back(name);
    }
    return blob;
}

base::Status PropertyBlob::ParseOwner(std::span<const std::byte> content, std::uint16_t type,
                                      const std::vector<std::u16string>& names) {
    ByteCursor cursor(content);
    const std::size_t head = cursor.Take<std::uint32_t>();
    const std::size_t length = cursor.Take<std::uint16_t>();
    PropertyOwner owner;
    owner.block_type = type;
    owner.column = text_->DecodeName(cursor.TakeBytes(length));
    if (cursor.failed() || head < kOwnerHead + length) return Unreadable();
    cursor.TakeBytes(head - kOwnerHead - length);
    while (cursor.left() > 0) {
        const std::size_t size = cursor.Take<std::uint16_t>();
        Property property;
        property.ddl = cursor.TakeByte();
        property.type = static_cast<ColumnType>(cursor.TakeByte());
        const std::size_t name = cursor.Take<std::uint16_t>();
        const std::size_t value_size = cursor.Take<std::uint16_t>();
        if (cursor.failed() || size < kPropertyHead + value_size || name >= names.size())
            return Unreadable();
        const auto value = cursor.TakeBytes(value_size);
        cursor.TakeBytes(size - kPropertyHead - value_size);
        if (cursor.failed()) return Unreadable();
        property.name = names[name];
        property.value.assign(value.begin(), value.end());
        owner.properties.push_back(std::move(property));
    }
    owners_.push_back(std::move(owner));
    return {};
}

Bytes PropertyBlob::Serialize() const {
    std::vector<std::u16string> names;
    for (const PropertyOwner& owner : owners_)
        for (const Property& property : owner.properties)
            if (std::ranges::find(names, property.name) == names.end())
                names.push_back(property.name);
    names.insert(names.end(), spare_names_.begin(), spare_names_.end());
    Bytes blob;
    for (const char c : Signature(*text_))
        blob.push_back(static_cast<std::byte>(c));
    Bytes list;
    for (const std::u16string& name : names)
        AppendName(list, *text_, name);
    AppendBlock(blob, kNameList, list);
    for (const PropertyOwner& owner : owners_) {
        Bytes name;
        AppendName(name, *text_, owner.column);
        Bytes content;
        base::AppendLittle(content, static_cast<std::uint32_t>(kOwnerName + name.size()));
        content.insert(content.end(), name.begin(), name.end());
        for (const Property& property : owner.properties) {
            const auto index = std::ranges::find(names, property.name) - names.begin();
            base::AppendLittle(content,
                               static_cast<std::uint16_t>(kPropertyHead + property.value.size()));
            content.push_back(std::byte{property.ddl});
            content.push_back(static_cast<std::byte>(property.type));
            base::AppendLittle(content, static_cast<std::uint16_t>(index));
            base::AppendLittle(content, static_cast<std::uint16_t>(property.value.size()));
            content.insert(content.end(), property.value.begin(), property.value.end());
        }
        AppendBlock(blob, owner.block_type, content);
    }
    return blob;
}

const Property* PropertyBlob::Find(std::u16string_view column, std::u16string_view name) const {
    for (const PropertyOwner& owner : owners_) {
        if (owner.column.empty() != column.empty() || !SameName(owner.column, column)) continue;
        for (const Property& property : owner.properties)
            if (SameName(property.name, name)) return &property;
    }
    return nullptr;
}

std::optional<bool> PropertyBlob::Boolean(std::u16string_view column,
                                          std::u16string_view name) const {
    const Property* property = Find(column, name);
    if (property == nullptr || property->value.empty()) return std::nullopt;
    return property->value[0] != std::byte{0};
}

std::optional<std::u16string> PropertyBlob::Text(std::u16string_view column,
                                                 std::u16string_view name) const {
    const Property* property = Find(column, name);
    if (property == nullptr) return std::nullopt;
    return text_->DecodeName(property->value);
}

Property& PropertyBlob::Make(std::u16string_view column, std::u16string_view name) {
    auto owner = std::ranges::find_if(owners_, [&](const PropertyOwner& o) {
        return o.column.empty() == column.empty() && SameName(o.column, column);
    });
    if (owner == owners_.end()) {
        owners_.push_back(
            {std::u16string(column), column.empty() ? kTableBlock : kColumnBlock, {}});
        owner = owners_.end() - 1;
    }
    const auto property = std::ranges::find_if(
        owner->properties, [&](const Property& p) { return SameName(p.name, name); });
    if (property != owner->properties.end()) return *property;
    std::erase(spare_names_, std::u16string(name));
    return owner->properties.emplace_back(Property{std::u16string(name), ColumnType::kText, 1, {}});
}

void PropertyBlob::SetBoolean(std::u16string_view column, std::u16string_view name, bool value) {
    Property& property = Make(column, name);
    property.type = ColumnType::kBoolean;
    property.value = {value ? std::byte{1} : std::byte{0}};
}

void PropertyBlob::SetText(std::u16string_view column, std::u16string_view name, ColumnType type,
                           std::u16string_view value) {
    Property& property = Make(column, name);
    property.type = type;
    property.value = text_->EncodeName(value).value_or(Bytes());
}

void PropertyBlob::Remove(std::u16string_view column, std::u16string_view name) {
    for (PropertyOwner& owner : owners_)
        if (owner.column.empty() == column.empty() && SameName(owner.column, column))
            std::erase_if(owner.properties,
                          [&](const Property& p) { return SameName(p.name, name); });
    std::erase_if(owners_, [](const PropertyOwner& owner) { return owner.properties.empty(); });
}

void PropertyBlob::RemoveColumn(std::u16string_view column) {
    std::erase_if(owners_, [&](const PropertyOwner& owner) {
        return owner.block_type == kColumnBlock && SameName(owner.column, column);
    });
}

}  // namespace jet
