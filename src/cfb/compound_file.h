// CompoundFile: read-only access to a Compound File Binary (structured storage) file: storages,
// streams, their bytes. Format: [MS-CFB]. Versions 3 (512-byte sectors) and 4 (4096). Every file is
// taken as hostile: all sector numbers, chains and sizes are checked before use, every chain has an
// end, and no file makes the reader take more memory than its own size calls for. Names are found
// without regard to letter case, as the platform does. Only the sectors that are asked for are
// read. Errors: kNotFound (no such file, element), kUnsupported (not a compound file), kCorruption,
// kIoError. Nothing throws. Threads: one CompoundFile belongs to one thread.
#pragma once

#include "base/status.h"
#include "cfb/byte_source.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace cfb {

enum class ElementType : std::uint8_t { kNone = 0, kStorage = 1, kStream = 2, kRoot = 5 };

struct Element {
    std::u16string name;
    ElementType type = ElementType::kNone;
    std::uint64_t size_bytes = 0;  // streams
    std::uint32_t id = 0;          // directory entry; the handle for the calls below
    bool operator==(const Element&) const = default;
};

class CompoundFile {
public:
    static base::Result<std::unique_ptr<CompoundFile>> Open(const std::filesystem::path& path);
    // The same from any source of bytes.
    static base::Result<std::unique_ptr<CompoundFile>> Open(std::unique_ptr<ByteSource> source);
    ~CompoundFile();
    CompoundFile(const CompoundFile&) = delete;
    CompoundFile& operator=(const CompoundFile&) = delete;

    const Element& root() const;
    // The direct members of a storage in the order of the platform's enumeration (the directory's
    // tree order: shorter names first, then by upper-cased letters). Fails when any of them cannot
    // be read.
    base::Result<std::vector<Element>> List(const Element& storage);
    // The same, without those that cannot be read; empty when none can.
    std::vector<Element> ListReadable(const Element& storage);
    // Damage elsewhere in the storage does not hide a member. kNotFound: no such member.
    base::Result<Element> Find(const Element& storage, std::u16string_view name);
    // The whole stream. kCorruption: the chain is shorter than the size says, or the size is larger
    // than the file.
    base::Result<std::vector<std::byte>> Read(const Element& stream);

private:
    class Impl;
    explicit CompoundFile(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

}  // namespace cfb
