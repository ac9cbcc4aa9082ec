// CompoundFile: read-only access to a Compound File Binary (structured storage) file: storages,
// streams, their bytes. Format: [MS-CFB]. Versions 3 (512-byte sectors) and 4 (4096). Files are not
// trusted: all sector numbers, chains and sizes are checked before use, loops are found, and the
// memory taken is bounded by the size of the file. Names are found without regard to letter case,
// as the format prescribes. Only the sectors needed are read. Errors: kNotFound (no such file,
// element), kUnsupported (not a compound file), kCorruption, kIoError. Nothing throws. Threads: one
// CompoundFile belongs to one thread.
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
    // The same from any source of bytes, which the file owns from now on.
    static base::Result<std::unique_ptr<CompoundFile>> Open(std::unique_ptr<ByteSource> source);
    ~CompoundFile();
    CompoundFile(const CompoundFile&) = delete;
    CompoundFile& operator=(const CompoundFile&) = delete;

    const Element& root() const;
    // The direct members of a storage in the order of the platform's enumeration (the directory's
    // tree order: shorter names first, then by upper-cased letters). Fails when any of them cannot
    // be read.
    base::Result<std::vector<Element>> List(const Element& storage);
    // The same without those that cannot be read; empty when none can be.
    std::vector<Element> ListReadable(const Element& storage);
    // Finds a member although others of the storage are damaged. kNotFound: no such member.
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
