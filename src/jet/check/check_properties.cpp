#include "jet/check/check_properties.h"

#include "base/byte_reader.h"

#include <cstdint>
#include <cstring>

namespace jet::check {
namespace {

constexpr std::uint16_t kNameList = 0x80;
constexpr std::uint16_t kOfObject = 0x00;
constexpr std::uint16_t kOfColumn = 0x01;

// Number of names; -1: they do not fill the block.
int CountNames(std::span<const std::byte> block) {
    int count = 0;
    while (!block.empty()) {
        const auto size = base::LittleAt<std::uint16_t>(block, 0);
        if (!size || block.size() - 2 < *size) return -1;
        block = block.subspan(2U + *size);
        ++count;
    }
    return count;
}

std::string CheckEntries(std::span<const std::byte> block, int names) {
    const auto head = base::LittleAt<std::uint32_t>(block, 0);
    const auto name_size = base::LittleAt<std::uint16_t>(block, 4);
    if (!head || !name_size || *head != 6U + *name_size || *head > block.size())
        return "the head of a property block is wrong";
    block = block.subspan(*head);
    while (!block.empty()) {
        const auto size = base::LittleAt<std::uint16_t>(block, 0);
        const auto name = base::LittleAt<std::uint16_t>(block, 4);
        const auto value_size = base::LittleAt<std::uint16_t>(block, 6);
        if (!size || !name || !value_size || *size != 8U + *value_size || *size > block.size())
            return "the length of a property is wrong";
        if (*name >= names) return "a property has no name";
        block = block.subspan(*size);
    }
    return {};
}

}  // namespace

std::string CheckProperties(std::span<const std::byte> blob, bool jet4) {
    const char* magic = jet4 ? "MR2" : "KKD";
    if (blob.size() < 4 || std::memcmp(blob.data(), magic, 4) != 0)
        return "the properties do not begin as they should";
    blob = blob.subspan(4);
    int names = -1;
    while (!blob.empty()) {
        const auto size = base::LittleAt<std::uint32_t>(blob, 0);
        const auto type = base::LittleAt<std::uint16_t>(blob, 4);
        if (!size || !type || *size < 6 || *size > blob.size())
            return "the length of a property block is wrong";
        const auto content = blob.subspan(6, *size - 6);
        std::string problem;
        if (*type == kNameList) {
            if (names >= 0) return "there are two lists of property names";
            names = CountNames(content);
            if (names < 0) return "the list of property names is damaged";
        } else if (*type == kOfObject || *type == kOfColumn) {
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
