#include "support/vpt_builder.h"

#include "base/unicode.h"

#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-output-stdio.h>
#include <gsf/gsf-utils.h>

#include <memory>
#include <mutex>
#include <random>
#include <utility>

namespace test_support {
namespace {

struct Unref {
    template <typename T>
    void operator()(T* object) const {
        g_object_unref(object);
    }
};
using Output = std::unique_ptr<GsfOutput, Unref>;

GsfOutfile* AsOutfile(const Output& output) {
    return reinterpret_cast<GsfOutfile*>(output.get());
}

base::Status Failed(const std::string& what) {
    return {base::StatusCode::kIoError, "libgsf: " + what};
}

// One node of the tree that is to be written; a stream has no members.
struct Node {
    bool is_storage = true;
    const std::vector<std::byte>* bytes = nullptr;
    std::vector<std::pair<std::u16string, std::unique_ptr<Node>>> members;

    Node& Member(const std::u16string& name) {
        for (auto& [member_name, node] : members)
            if (member_name == name) return *node;
        return *members.emplace_back(name, std::make_unique<Node>()).second;
    }
    Node& At(std::u16string_view path) {
        const std::size_t slash = path.find(u'/');
        Node& first = Member(std::u16string(path.substr(0, slash)));
        return slash == std::u16string_view::npos ? first : first.At(path.substr(slash + 1));
    }
};

bool WriteMembers(GsfOutfile* parent, const Node& storage);

bool WriteNode(GsfOutfile* parent, const std::u16string& name, const Node& node) {
    const std::string utf8 = base::ToUtf8(name);
    const Output child(gsf_outfile_new_child(parent, utf8.c_str(), node.is_storage));
    if (!child) return false;
    bool ok = true;
    if (node.is_storage)
        ok = WriteMembers(AsOutfile(child), node);
    else if (!node.bytes->empty())
        ok = gsf_output_write(child.get(), node.bytes->size(),
                              reinterpret_cast<const guint8*>(node.bytes->data()));
    return gsf_output_close(child.get()) && ok;
}

bool WriteMembers(GsfOutfile* parent, const Node& storage) {
    bool ok = true;
    for (const auto& [name, node] : storage.members)
        ok = WriteNode(parent, name, *node) && ok;
    return ok;
}

base::Status WriteTree(const std::filesystem::path& path, const Node& root, unsigned sector_size) {
    static std::once_flag once;
    std::call_once(once, [] { gsf_init(); });
    const Output sink(gsf_output_stdio_new(path.c_str(), nullptr));
    if (!sink) return Failed("cannot create " + path.string());
    const Output file(
        reinterpret_cast<GsfOutput*>(gsf_outfile_msole_new_full(sink.get(), sector_size, 64)));
    if (!file) return Failed("refuses the sector size");
    const bool written = WriteMembers(AsOutfile(file), root);
    const bool closed = gsf_output_close(file.get());
    if (!written || !closed) return Failed("cannot write " + path.string());
    return base::Status::Ok();
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
    Node root;
    Node& version_stream = root.At(u"GameStg/Version");
    version_stream.is_storage = false;
    version_stream.bytes = &version;
    for (const Item& item : items_) {
        Node& node = root.At(item.path);
        node.is_storage = item.is_storage;
        node.bytes = &item.bytes;
    }
    return WriteTree(path, root, sector_size_);
}

}  // namespace test_support
