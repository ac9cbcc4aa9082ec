#include "example/compound_file_writer.h"

#include "base/byte_writer.h"
#include "base/letter_case.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <utility>

namespace example {
namespace {

using base::StoreLittle;
using Bytes8 = std::vector<std::byte>;

constexpr std::size_t kSectorSize = 512;
constexpr std::size_t kPieceSize = 64;         // of the mini stream
constexpr std::size_t kCutoff = 4096;          // smaller streams lie in the mini stream
constexpr std::size_t kEntrySize = 128;        // of the directory
constexpr std::size_t kNumbersInSector = 128;  // of a FAT sector
constexpr std::size_t kListedFatSectors = 109;
constexpr std::uint32_t kNone = 0xFFFFFFFF;  // no entry; a free sector
constexpr std::uint32_t kEnd = 0xFFFFFFFE;   // of a chain
constexpr std::uint32_t kFatSector = 0xFFFFFFFD;

void Pad(Bytes8& bytes, std::size_t unit, std::byte with = {}) {
    bytes.resize((bytes.size() + unit - 1) / unit * unit, with);
}

// Adds a chain of `count` numbers to a FAT; the first of them.
std::uint32_t AddChain(std::vector<std::uint32_t>& fat, std::size_t count) {
    if (count == 0) return kEnd;
    const auto first = static_cast<std::uint32_t>(fat.size());
    for (std::size_t i = 1; i < count; ++i)
        fat.push_back(static_cast<std::uint32_t>(fat.size()) + 1);
    fat.push_back(kEnd);
    return first;
}

Bytes8 NumbersAsBytes(const std::vector<std::uint32_t>& numbers) {
    Bytes8 bytes;
    for (const std::uint32_t number : numbers)
        base::AppendLittle(bytes, number);
    Pad(bytes, kSectorSize, std::byte{0xFF});  // free
    return bytes;
}

}  // namespace

// One file while it is put together: sectors behind the header, and the FAT that links them.
class CompoundFileWriter::Layout {
public:
    explicit Layout(const std::vector<Entry>& entries)
        : entries_(entries), places_(entries.size()) {}

    base::Result<Bytes8> Make() {
        PlaceStreams();
        PlaceMembers();
        const std::uint32_t directory = AddSectors(Directory());
        const std::size_t fat_sectors = CountFatSectors();
        if (fat_sectors > kListedFatSectors)
            return base::Status(base::StatusCode::kUnsupported,
                                "the table file would be too large");
        const std::size_t first = fat_.size();
        fat_.insert(fat_.end(), fat_sectors, kFatSector);
        const Bytes8 fat = NumbersAsBytes(fat_);
        Bytes8 file = Header(directory, first, fat_sectors);
        file.insert(file.end(), sectors_.begin(), sectors_.end());
        file.insert(file.end(), fat.begin(), fat.end());
        return file;
    }

private:
    struct Place {
        std::uint32_t start = kEnd;
        std::uint32_t size = 0;
        std::uint32_t left = kNone, right = kNone, child = kNone;
        bool is_black = true;
    };

    std::uint32_t AddSectors(Bytes8 bytes) {
        Pad(bytes, kSectorSize);
        sectors_.insert(sectors_.end(), bytes.begin(), bytes.end());
        return AddChain(fat_, bytes.size() / kSectorSize);
    }

    void PlaceStreams() {
        Bytes8 mini_stream;
        std::vector<std::uint32_t> mini_fat;
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            const Bytes8& bytes = entries_[i].bytes;
            places_[i].size = static_cast<std::uint32_t>(bytes.size());
            if (bytes.size() >= kCutoff) {
                places_[i].start = AddSectors(bytes);
            } else {
                mini_stream.insert(mini_stream.end(), bytes.begin(), bytes.end());
                Pad(mini_stream, kPieceSize);
                places_[i].start = AddChain(mini_fat, (bytes.size() + kPieceSize - 1) / kPieceSize);
            }
        }
        places_[0].size = static_cast<std::uint32_t>(mini_stream.size());
        places_[0].start = AddSectors(mini_stream);
        const Bytes8 mini_fat_bytes = NumbersAsBytes(mini_fat);
        mini_fat_sectors_ = mini_fat_bytes.size() / kSectorSize;
        mini_fat_start_ = AddSectors(mini_fat_bytes);
    }

    // The members of a storage are a tree in the order of the format: the shorter name first, then
    // by letters in upper case.
    void PlaceMembers() {
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            std::vector<std::size_t> members = entries_[i].members;
            std::sort(members.begin(), members.end(), [this](std::size_t a, std::size_t b) {
                const std::u16string &first = entries_[a].name, &second = entries_[b].name;
                if (first.size() != second.size()) return first.size() < second.size();
                return base::ToUpper(first) < base::ToUpper(second);
            });
            // As deep as all levels are full the nodes are black, below they are red.
            const auto full_levels = static_cast<int>(std::bit_width(members.size() + 1)) - 1;
            places_[i].child = Tree(members, 0, members.size(), full_levels);
        }
    }
    std::uint32_t Tree(const std::vector<std::size_t>& members, std::size_t from, std::size_t to,
                       int full_levels) {
        if (from == to) return kNone;
        const std::size_t middle = from + (to - from) / 2;
        Place& place = places_[members[middle]];
        place.is_black = full_levels > 0;
        place.left = Tree(members, from, middle, full_levels - 1);
        place.right = Tree(members, middle + 1, to, full_levels - 1);
        return static_cast<std::uint32_t>(members[middle]);
    }

    Bytes8 Directory() const {
        Bytes8 directory;
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            const Entry& entry = entries_[i];
            const Place& place = places_[i];
            std::array<std::byte, kEntrySize> bytes{};
            for (std::size_t unit = 0; unit < entry.name.size(); ++unit)
                StoreLittle(bytes.data() + 2 * unit, static_cast<std::uint16_t>(entry.name[unit]));
            StoreLittle(bytes.data() + 0x40,
                        static_cast<std::uint16_t>(2 * (entry.name.size() + 1)));
            bytes[0x42] =
                std::byte{i == 0 ? std::uint8_t{5} : std::uint8_t(entry.is_storage ? 1 : 2)};
            bytes[0x43] = std::byte{place.is_black ? std::uint8_t{1} : std::uint8_t{0}};
            StoreLittle(bytes.data() + 0x44, place.left);
            StoreLittle(bytes.data() + 0x48, place.right);
            StoreLittle(bytes.data() + 0x4C, place.child);
            const bool has_place = i == 0 || !entry.is_storage;
            StoreLittle(bytes.data() + 0x74, has_place ? place.start : std::uint32_t{0});
            StoreLittle(bytes.data() + 0x78, place.size);
            directory.insert(directory.end(), bytes.begin(), bytes.end());
        }
        while (directory.size() % kSectorSize != 0)
            AppendUnusedEntry(directory);
        return directory;
    }
    static void AppendUnusedEntry(Bytes8& directory) {
        std::array<std::byte, kEntrySize> bytes{};
        for (const std::size_t link : {0x44U, 0x48U, 0x4CU})
            StoreLittle(bytes.data() + link, kNone);
        directory.insert(directory.end(), bytes.begin(), bytes.end());
    }

    // The FAT has numbers for its own sectors, too.
    std::size_t CountFatSectors() const {
        std::size_t count = 0;
        while (count * kNumbersInSector < fat_.size() + count)
            ++count;
        return count;
    }

    Bytes8 Header(std::uint32_t directory, std::size_t first_fat, std::size_t fat_sectors) const {
        Bytes8 header(kSectorSize);
        constexpr std::array<std::uint8_t, 8> signature = {0xD0, 0xCF, 0x11, 0xE0,
                                                           0xA1, 0xB1, 0x1A, 0xE1};
        std::transform(signature.begin(), signature.end(), header.begin(),
                       [](std::uint8_t byte) { return std::byte{byte}; });
        std::byte* const to = header.data();
        StoreLittle(to + 0x18, std::uint16_t{0x3E});  // minor version
        StoreLittle(to + 0x1A, std::uint16_t{3});
        StoreLittle(to + 0x1C, std::uint16_t{0xFFFE});
        StoreLittle(to + 0x1E, std::uint16_t{9});
        StoreLittle(to + 0x20, std::uint16_t{6});
        StoreLittle(to + 0x2C, static_cast<std::uint32_t>(fat_sectors));
        StoreLittle(to + 0x30, directory);
        StoreLittle(to + 0x38, static_cast<std::uint32_t>(kCutoff));
        StoreLittle(to + 0x3C, mini_fat_start_);
        StoreLittle(to + 0x40, static_cast<std::uint32_t>(mini_fat_sectors_));
        StoreLittle(to + 0x44, kEnd);  // the list of FAT sectors does not go on elsewhere
        for (std::size_t i = 0; i < kListedFatSectors; ++i)
            StoreLittle(to + 0x4C + 4 * i,
                        i < fat_sectors ? static_cast<std::uint32_t>(first_fat + i) : kNone);
        return header;
    }

    const std::vector<Entry>& entries_;
    std::vector<Place> places_;  // of the entries
    Bytes8 sectors_;
    std::vector<std::uint32_t> fat_;
    std::uint32_t mini_fat_start_ = kEnd;
    std::size_t mini_fat_sectors_ = 0;
};

CompoundFileWriter::CompoundFileWriter() : entries_{{u"Root Entry"}} {}

std::size_t CompoundFileWriter::StorageIn(std::size_t storage, std::u16string_view name) {
    for (const std::size_t member : entries_[storage].members)
        if (entries_[member].name == name) return member;
    entries_[storage].members.push_back(entries_.size());
    entries_.push_back({std::u16string(name)});
    return entries_.size() - 1;
}

void CompoundFileWriter::Add(std::u16string_view path, std::vector<std::byte> bytes) {
    std::size_t at = 0;
    for (;;) {
        const std::size_t slash = path.find(u'/');
        at = StorageIn(at, path.substr(0, slash));
        if (slash == std::u16string_view::npos) break;
        path.remove_prefix(slash + 1);
    }
    entries_[at].is_storage = false;
    entries_[at].bytes = std::move(bytes);
}

base::Result<std::vector<std::byte>> CompoundFileWriter::Bytes() const {
    return Layout(entries_).Make();
}

}  // namespace example
