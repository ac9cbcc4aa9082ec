#include "jet/check/check_properties.h"

#include "base/byte_reader.h"
#include "jet/pages/property_layout.h"

#include <cstdint>
#include <cstring>

namespace jet::check {
namespace {

// Number of names; -1: they do not fill the block.
int CountNames(std::span<const std::byte> block) {
    int count = 0;
    while (!block.empty()) {
        const auto size = base::LittleAt<std::uint16_t>(block, 0);
        if (!size || block.size() - kNameHead < *size) return -1;
        block = block.subspan(kNameHead + *size);
        ++count;
    }
    return count;
}

std::string CheckEntries(std::span<const std::byte> block, int names) {
    const auto head = base::LittleAt<std::uint32_t>(block, 0);
    const auto name_size = base::LittleAt<std::uint16_t>(block, kOwnerName);
    if (!head || !name_size || *head != kOwnerHead + *name_size || *head > block.size())
        return "the head of a property block is wrong";
    block = block.subspan(*head);
    while (!block.empty()) {
        const auto size = base::LittleAt<std::uint16_t>(block, 0);
        const auto name = base::LittleAt<std::uint16_t>(block, kPropertyName);
        const auto value_size = base::LittleAt<std::uint16_t>(block, kPropertyValueSize);
        if (!size || !name || !value_size || *size != kPropertyHead + *value_size ||
            *size > block.size())
            return "the length of a property is wrong";
        if (*name >= names) return "a property has no name";
        block = block.subspan(*size);
    }
    return {};
}

}  // namespace

std::string CheckProperties(std::span<const std::byte> blob, bool jet4) {
    const std::string_view signature = jet4 ? kPropertiesJet4 : kPropertiesJet3;
    if (blob.size() < signature.size() ||
        std::memcmp(blob.data(), signature.data(), signature.size()) != 0)
        return "the properties do not begin as they should";
    blob = blob.subspan(signature.size());
    int names = -1;
    while (!blob.empty()) {
        const auto size = base::LittleAt<std::uint32_t>(blob, 0);
        const auto type = base::LittleAt<std::uint16_t>(blob, kBlockType);
        if (!size || !type || *size < kBlockHead || *size > blob.size())
            return "the length of a property block is wrong";
        const auto content = blob.subspan(kBlockHead, *size - kBlockHead);
        std::string problem;
        if (*type == kNameList) {
            if (names >= 0) return "there are two lists of property names";
            names = CountNames(content);
            if (names < 0) return "the list of property names is damaged";
        } else if (*type == kTableBlock || *type == kColumnBlock) {
            problem = CheckEntries(content, names);
        } else {
            return "a property block has an unknown type";
        }
        if (!problem.empty()) return problem;
        blob = blob.subspan(*size);
    }
    return {};
}

}  // namespace jet::check
