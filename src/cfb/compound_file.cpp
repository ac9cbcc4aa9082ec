#include "cfb/compound_file.h"

#include "base/unicode.h"
#include "cfb/allocation.h"
#include "cfb/directory.h"
#include "cfb/header.h"
#include "cfb/name_order.h"
#include "cfb/sector_reader.h"
#include "cfb/stream_reader.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace cfb {

class CompoundFile::Impl {
public:
    Impl(std::unique_ptr<SectorReader> sectors, const Header& header)
        : sectors_(std::move(sectors)), header_(header), table_(*sectors_, header_),
          directory_(*sectors_, table_, header_) {}

    // Requires: called once, before the other calls.
    base::Status ReadRoot() {
        ASSIGN_OR_RETURN(DirectoryEntry root, directory_.Entry(0));
        if (root.element.type != ElementType::kRoot)
            return {base::StatusCode::kCorruption, "the directory does not begin with a root"};
        root_ = root.element;
        streams_ = std::make_unique<StreamReader>(*sectors_, table_, header_, root);
        return base::Status::Ok();
    }

    const Element& root() const { return root_; }

    // Borrowed; valid as long as the file.
    base::Result<const Members*> MembersOf(EntryId storage) {
        if (const auto found = members_.find(storage); found != members_.end())
            return &found->second;
        ASSIGN_OR_RETURN(const DirectoryEntry entry, directory_.Entry(storage));
        if (entry.element.type == ElementType::kStream)
            return base::Status(base::StatusCode::kInvalidArgument, "a stream has no members");
        return &members_.emplace(storage, directory_.MembersOf(entry)).first->second;
    }

    base::Result<std::vector<std::byte>> Read(EntryId stream) {
        ASSIGN_OR_RETURN(const DirectoryEntry entry, directory_.Entry(stream));
        if (entry.element.type != ElementType::kStream)
            return base::Status(base::StatusCode::kInvalidArgument, "a storage holds no bytes");
        return streams_->Read(entry);
    }

private:
    std::unique_ptr<SectorReader> sectors_;
    Header header_;
    AllocationTable table_;
    Directory directory_;
    Element root_;
    std::unique_ptr<StreamReader> streams_;
    std::unordered_map<EntryId, Members> members_;
};

CompoundFile::CompoundFile(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
CompoundFile::~CompoundFile() = default;

base::Result<std::unique_ptr<CompoundFile>> CompoundFile::Open(const std::filesystem::path& path) {
    ASSIGN_OR_RETURN(std::unique_ptr<ByteSource> source, OpenFileSource(path));
    return Open(std::move(source));
}

base::Result<std::unique_ptr<CompoundFile>> CompoundFile::Open(std::unique_ptr<ByteSource> source) {
    auto sectors = std::make_unique<SectorReader>(std::move(source));
    ASSIGN_OR_RETURN(const auto bytes, sectors->HeaderBytes());
    ASSIGN_OR_RETURN(const Header header, ParseHeader(bytes));
    sectors->SetSectorShift(header.sector_shift);
    auto impl = std::make_unique<Impl>(std::move(sectors), header);
    RETURN_IF_ERROR(impl->ReadRoot());
    return std::unique_ptr<CompoundFile>(new CompoundFile(std::move(impl)));
}

const Element& CompoundFile::root() const {
    return impl_->root();
}

base::Result<std::vector<Element>> CompoundFile::List(const Element& storage) {
    ASSIGN_OR_RETURN(const Members* members, impl_->MembersOf(storage.id));
    RETURN_IF_ERROR(members->damage);
    return members->elements;
}

std::vector<Element> CompoundFile::ListReadable(const Element& storage) {
    const auto members = impl_->MembersOf(storage.id);
    return members.ok() ? (*members)->elements : std::vector<Element>();
}

base::Result<Element> CompoundFile::Find(const Element& storage, std::u16string_view name) {
    ASSIGN_OR_RETURN(const Members* members, impl_->MembersOf(storage.id));
    const auto& elements = members->elements;
    const auto found = std::find_if(elements.begin(), elements.end(),
                                    [name](const Element& e) { return SameName(e.name, name); });
    if (found != elements.end()) return *found;
    RETURN_IF_ERROR(members->damage);
    return base::Status(base::StatusCode::kNotFound, "no element named " + base::ToUtf8(name));
}

base::Result<std::vector<std::byte>> CompoundFile::Read(const Element& stream) {
    return impl_->Read(stream.id);
}

}  // namespace cfb
