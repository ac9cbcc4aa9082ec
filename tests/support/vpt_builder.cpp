#include "support/vpt_builder.h"

#include "support/other_compound_files.h"

#include <random>

namespace test_support {
namespace {

CompoundNode& Member(CompoundNode& storage, const std::u16string& name) {
    for (auto& [member_name, node] : storage.members)
        if (member_name == name) return *node;
    return *storage.members.emplace_back(name, std::make_unique<CompoundNode>()).second;
}

CompoundNode& At(CompoundNode& storage, std::u16string_view path) {
    const std::size_t slash = path.find(u'/');
    CompoundNode& first = Member(storage, std::u16string(path.substr(0, slash)));
    return slash == std::u16string_view::npos ? first : At(first, path.substr(slash + 1));
}

}  // namespace

std::vector<std::byte> Utf16Bytes(std::u16string_view text) {
    std::vector<std::byte> bytes;
    for (const char16_t c : text) {
        bytes.push_back(static_cast<std::byte>(c & 0xFF));
        bytes.push_back(static_cast<std::byte>(c >> 8));
    }
    return bytes;
}

std::vector<std::byte> BytesOf(std::string_view bytes) {
    const auto* begin = reinterpret_cast<const std::byte*>(bytes.data());
    return {begin, begin + bytes.size()};
}

std::vector<std::byte> FillerBytes(std::size_t size_bytes, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<std::byte> bytes(size_bytes);
    for (std::byte& byte : bytes)
        byte = static_cast<std::byte>(random() & 0xFF);
    return bytes;
}

VptBuilder& VptBuilder::Text(std::u16string_view stream, std::u16string_view text) {
    return Bytes(stream, Utf16Bytes(text));
}

VptBuilder& VptBuilder::Bytes(std::u16string_view stream, std::vector<std::byte> bytes) {
    return Stream(u"TableInfo/" + std::u16string(stream), std::move(bytes));
}

VptBuilder& VptBuilder::Screenshot(std::vector<std::byte> picture_file) {
    return Bytes(u"Screenshot", std::move(picture_file));
}

VptBuilder& VptBuilder::WithTableInfo() {
    return Storage(u"TableInfo");
}

VptBuilder& VptBuilder::Stream(std::u16string_view path, std::vector<std::byte> bytes) {
    items_.push_back({std::u16string(path), false, std::move(bytes)});
    return *this;
}

VptBuilder& VptBuilder::Storage(std::u16string_view path) {
    items_.push_back({std::u16string(path), true, {}});
    return *this;
}

VptBuilder& VptBuilder::Filler(std::size_t size_bytes, std::uint32_t seed) {
    return Stream(u"GameStg/GameData", FillerBytes(size_bytes, seed));
}

VptBuilder& VptBuilder::SectorSize(unsigned size_bytes) {
    sector_size_ = size_bytes;
    return *this;
}

base::Status VptBuilder::Write(const std::filesystem::path& path) const {
    const std::vector<std::byte> version = BytesOf(std::string_view("\x58\x02\0\0", 4));
    CompoundNode root;
    CompoundNode& version_stream = At(root, u"GameStg/Version");
    version_stream.is_storage = false;
    version_stream.bytes = &version;
    for (const Item& item : items_) {
        CompoundNode& node = At(root, item.path);
        node.is_storage = item.is_storage;
        node.bytes = &item.bytes;
    }
    return WriteCompoundFile(path, root, sector_size_);
}

}  // namespace test_support
