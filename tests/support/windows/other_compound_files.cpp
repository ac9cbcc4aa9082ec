#include "support/other_compound_files.h"

#include "base/file_names.h"
#include "base/unicode.h"
#include "support/windows/system_header.h"

#include <objbase.h>

namespace test_support {
namespace {

struct Release {
    template <typename T>
    void operator()(T* object) const {
        object->Release();
    }
};
using Storage = std::unique_ptr<IStorage, Release>;
using Stream = std::unique_ptr<IStream, Release>;
using Elements = std::unique_ptr<IEnumSTATSTG, Release>;

constexpr DWORD kForWriting = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kForReading = STGM_READ | STGM_SHARE_EXCLUSIVE;

std::wstring WideName(const std::u16string& name) {
    return {name.begin(), name.end()};
}

bool WriteMembers(IStorage& parent, const CompoundNode& storage);

bool WriteStream(IStorage& parent, const std::wstring& name, const std::vector<std::byte>* bytes) {
    IStream* made = nullptr;
    if (FAILED(parent.CreateStream(name.c_str(), kForWriting, 0, 0, &made))) return false;
    const Stream stream(made);
    if (bytes == nullptr || bytes->empty()) return true;
    const auto size = static_cast<ULONG>(bytes->size());
    ULONG written = 0;
    return SUCCEEDED(stream->Write(bytes->data(), size, &written)) && written == size;
}

bool WriteNode(IStorage& parent, const std::wstring& name, const CompoundNode& node) {
    if (!node.is_storage) return WriteStream(parent, name, node.bytes);
    IStorage* made = nullptr;
    if (FAILED(parent.CreateStorage(name.c_str(), kForWriting, 0, 0, &made))) return false;
    const Storage storage(made);
    return WriteMembers(*storage, node);
}

bool WriteMembers(IStorage& parent, const CompoundNode& storage) {
    bool ok = true;
    for (const auto& [name, node] : storage.members)
        ok = WriteNode(parent, WideName(name), *node) && ok;
    return ok;
}

std::vector<std::byte> AllBytes(IStorage& parent, const STATSTG& element) {
    IStream* opened = nullptr;
    if (FAILED(parent.OpenStream(element.pwcsName, nullptr, kForReading, 0, &opened))) return {};
    const Stream stream(opened);
    std::vector<std::byte> bytes(static_cast<std::size_t>(element.cbSize.QuadPart));
    ULONG read = 0;
    if (FAILED(stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read))) return {};
    bytes.resize(read);
    return bytes;
}

void Collect(IStorage& storage, const std::string& prefix, CompoundContents& contents) {
    IEnumSTATSTG* listed = nullptr;
    if (FAILED(storage.EnumElements(0, nullptr, 0, &listed))) return;
    const Elements elements(listed);
    for (STATSTG element{}; elements->Next(1, &element, nullptr) == S_OK; element = {}) {
        const std::string name = prefix + base::Utf8Of(element.pwcsName);
        if (element.type == STGTY_STORAGE) {
            contents[name + "/"];
            IStorage* opened = nullptr;
            if (SUCCEEDED(storage.OpenStorage(element.pwcsName, nullptr, kForReading, nullptr, 0,
                                              &opened)))
                Collect(*Storage(opened), name + "/", contents);
        } else {
            contents[name] = AllBytes(storage, element);
        }
        CoTaskMemFree(element.pwcsName);
    }
}

}  // namespace

base::Status WriteCompoundFile(const std::filesystem::path& path, const CompoundNode& root,
                               unsigned sector_size) {
    STGOPTIONS options{};
    options.usVersion = 1;
    options.ulSectorSize = sector_size;
    void* made = nullptr;
    const bool is_made = SUCCEEDED(StgCreateStorageEx(path.c_str(), kForWriting, STGFMT_DOCFILE, 0,
                                                      &options, nullptr, IID_IStorage, &made));
    const Storage file(static_cast<IStorage*>(made));
    if (is_made && WriteMembers(*file, root) && SUCCEEDED(file->Commit(STGC_DEFAULT))) return {};
    return {base::StatusCode::kIoError, "ole32 does not write " + base::Utf8Of(path)};
}

std::optional<CompoundContents> ReadCompoundFile(const std::filesystem::path& path) {
    STGOPTIONS options{};
    options.usVersion = 1;
    void* opened = nullptr;
    if (FAILED(StgOpenStorageEx(path.c_str(), kForReading, STGFMT_DOCFILE, 0, &options, nullptr,
                                IID_IStorage, &opened)))
        return std::nullopt;
    const Storage root(static_cast<IStorage*>(opened));
    CompoundContents contents;
    Collect(*root, "", contents);
    return contents;
}

}  // namespace test_support
