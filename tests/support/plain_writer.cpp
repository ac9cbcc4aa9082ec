#include "support/plain_writer.h"

#include "jet/index/key_encoder.h"
#include "jet/tables/catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace test_support {
namespace {

constexpr std::uint16_t kMoved = 0x4000;
constexpr std::uint16_t kTarget = 0x8000;
constexpr std::uint16_t kDeleted = 0xC000;
constexpr jet::RowPointer kFreePages{1, 0};

std::uint16_t Load16(const std::byte* at) {
    return base::LoadLittle<std::uint16_t>(at);
}
std::uint32_t Load32(const std::byte* at) {
    return base::LoadLittle<std::uint32_t>(at);
}
void Store16(std::byte* at, std::size_t value) {
    base::StoreLittle(at, static_cast<std::uint16_t>(value));
}

}  // namespace

PlainWriter::PlainWriter(std::vector<std::byte> file, std::u16string_view table)
    : file_(std::move(file)), format_(jet::FormatOf(file_[0x14] == std::byte{0} ? 3 : 4)),
      store_(jet::MakeMemoryPageStore(format_.page_size, file_)) {
    const auto header = jet::ReadPageHeader(store_->Read(0).value().bytes(), "");
    context_ = std::make_unique<jet::FileContext>(*store_, header.value());
    jet::Catalog catalog(*context_);
    const auto page = catalog.FindTable(table).value()->definition_page();
    table_ = jet::ReadTableDefinition(*store_, format_, context_->text, page).value();
}

std::span<std::byte> PlainWriter::Page(PageNumber page) {
    return std::span(file_).subspan(std::size_t{page} * format_.page_size, format_.page_size);
}

// ------------------------------------------------------------------------- pages and maps

std::span<std::byte> PlainWriter::MapRow(jet::RowPointer map) {
    const jet::RowId id{map.page, map.row};
    return Page(map.page).subspan(Slot(id) & 0x1FFFU, Length(id));
}

std::vector<jet::PageNumber> PlainWriter::Members(jet::RowPointer map) {
    std::vector<PageNumber> pages;
    const auto row = MapRow(map);
    const auto add = [&](std::span<const std::byte> bits, std::size_t first) {
        for (std::size_t bit = 0; bit < 8 * bits.size(); ++bit)
            if ((std::to_integer<unsigned>(bits[bit / 8]) >> (bit % 8) & 1U) != 0)
                pages.push_back(static_cast<PageNumber>(first + bit));
    };
    if (row[0] == std::byte{0}) {
        add(row.subspan(5), Load32(row.data() + 1));
        return pages;
    }
    for (std::size_t i = 0; 5 + 4 * i <= row.size(); ++i)
        if (const auto bitmap = Load32(row.data() + 1 + 4 * i); bitmap != 0)
            add(Page(bitmap).subspan(4), i * format_.bits_per_bitmap_page());
    return pages;
}

// False: the map does not reach so far.
bool PlainWriter::Assign(jet::RowPointer map, PageNumber page, bool value) {
    const auto row = MapRow(map);
    std::span<std::byte> bits = row.subspan(5);
    std::size_t bit = page - Load32(row.data() + 1);
    if (row[0] == std::byte{1}) {
        const auto bitmap = Load32(row.data() + 1 + 4 * (page / format_.bits_per_bitmap_page()));
        if (bitmap == 0) return false;
        bits = Page(bitmap).subspan(4);
        bit = page % format_.bits_per_bitmap_page();
    }
    if (bit / 8 >= bits.size()) return false;
    const auto mask = static_cast<std::byte>(1U << bit % 8);
    bits[bit / 8] = value ? bits[bit / 8] | mask : bits[bit / 8] & ~mask;
    return true;
}

// Always behind the last one; where the map of free pages does not reach, nothing is noted.
jet::PageNumber PlainWriter::AddPage() {
    const auto page = static_cast<PageNumber>(file_.size() / format_.page_size);
    file_.resize(file_.size() + format_.page_size);
    Assign(kFreePages, page, false);
    return page;
}

jet::PageNumber PlainWriter::NewPage(jet::RowPointer map) {
    const PageNumber page = AddPage();
    if (Assign(map, page, true)) return page;
    ReferToBitmap(map);
    EXPECT_TRUE(Assign(map, page, true)) << "more than one page of bits";
    return page;
}

// The bits move to a page of their own, which is in no map.
void PlainWriter::ReferToBitmap(jet::RowPointer map) {
    const std::vector<PageNumber> members = Members(map);
    const PageNumber bitmap = AddPage();
    Page(bitmap)[0] = std::byte{5};
    Page(bitmap)[1] = std::byte{1};
    const auto row = MapRow(map);
    std::ranges::fill(row, std::byte{0});
    row[0] = std::byte{1};
    base::StoreLittle(row.data() + 1, bitmap);
    for (const PageNumber member : members)
        EXPECT_TRUE(Assign(map, member, true));
}

// The page leaves its map, but free it is only where the map of free pages reaches.
void PlainWriter::FreePage(jet::RowPointer map, PageNumber page) {
    Assign(map, page, false);
    Assign(kFreePages, page, true);
    Page(page)[0] = std::byte{0x09};
}

void PlainWriter::MoveFreeMapOn() {
    const auto row = MapRow(kFreePages);
    if (row[0] != std::byte{0}) return;
    const std::size_t pages = file_.size() / format_.page_size;
    base::StoreLittle(row.data() + 1, static_cast<std::uint32_t>(pages & ~std::size_t{7}));
    std::ranges::fill(row.subspan(5), std::byte{0xFF});
    row[5] = static_cast<std::byte>(0xFFU << pages % 8);
}

// ------------------------------------------------------------------------- rows

std::uint16_t PlainWriter::Slot(jet::RowId id) {
    return Load16(Page(id.page).data() + format_.slots_offset + 2U * id.slot);
}

std::size_t PlainWriter::Length(jet::RowId id) {
    const std::size_t end = id.slot == 0
                                ? format_.page_size
                                : Slot({id.page, static_cast<std::uint8_t>(id.slot - 1)}) & 0x1FFFU;
    return end - (Slot(id) & 0x1FFFU);
}

std::size_t PlainWriter::Room(PageNumber page) {
    return Load16(Page(page).data() + 2);
}

// The slots behind move down or up.
void PlainWriter::Resize(jet::RowId id, std::size_t length, std::uint16_t flags) {
    const auto page = Page(id.page);
    const std::size_t count = Load16(page.data() + format_.slot_count_offset);
    const auto slot_at = [&](std::size_t slot) {
        return page.data() + format_.slots_offset + 2 * slot;
    };
    const std::size_t lowest = Load16(slot_at(count - 1)) & 0x1FFFU;
    const std::size_t start = Slot(id) & 0x1FFFU;
    const std::size_t old = Length(id);
    std::memmove(page.data() + lowest + old - length, page.data() + lowest, start - lowest);
    for (std::size_t slot = id.slot; slot < count; ++slot) {
        const std::size_t word = Load16(slot_at(slot));
        const std::size_t its_flags = slot == id.slot ? flags : word & 0xE000U;
        Store16(slot_at(slot), ((word & 0x1FFFU) + old - length) | its_flags);
    }
    Store16(page.data() + 2, Room(id.page) + old - length);
}

jet::Bytes PlainWriter::Encode(const PlainRow& row) const {
    Bytes bytes;
    const bool jet4 = format_.jet4();
    const auto add = [&](std::size_t value, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i)
            bytes.push_back(static_cast<std::byte>(value >> 8 * i));
    };
    std::vector<std::size_t> offsets;
    add(3, jet4 ? 2 : 1);
    add(static_cast<std::uint32_t>(row.id), 4);
    for (const std::u16string* text : {&row.name, &row.note}) {
        offsets.push_back(bytes.size());
        for (const char16_t unit : *text)
            add(unit, jet4 ? 2 : 1);
    }
    offsets.push_back(bytes.size());
    if (jet4) {
        for (std::size_t i = 3; i-- > 0;)
            add(offsets[i], 2);
        add(2, 2);
    } else {
        std::size_t jumps = 0;
        while ((bytes.size() + 3 + jumps + 2 - 1) / 256 > jumps)
            ++jumps;
        for (std::size_t i = 3; i-- > 0;)
            add(offsets[i] & 0xFFU, 1);
        for (std::size_t jump = jumps; jump-- > 0;) {
            const auto first = std::ranges::find_if(
                offsets, [&](std::size_t offset) { return offset >= 256 * (jump + 1); });
            add(first == offsets.end() ? 0xFFU : static_cast<std::size_t>(first - offsets.begin()),
                1);
        }
        add(2, 1);
    }
    add(7, 1);
    return bytes;
}

jet::RowId PlainWriter::Store(const Bytes& row, std::uint16_t flags) {
    std::optional<PageNumber> place;
    for (const PageNumber page : Members(table_.owned))
        if (Room(page) >= row.size() + 2 &&
            Load16(Page(page).data() + format_.slot_count_offset) < 255)
            place = page;
    if (!place) {
        place = NewPage(table_.owned);
        const auto page = Page(*place);
        page[0] = page[1] = std::byte{1};
        base::StoreLittle(page.data() + 4, table_.page);
        Store16(page.data() + 2, format_.page_size - format_.slots_offset);
    }
    const auto page = Page(*place);
    const std::size_t count = Load16(page.data() + format_.slot_count_offset);
    const std::size_t end =
        count == 0 ? format_.page_size
                   : Load16(page.data() + format_.slots_offset + 2 * (count - 1)) & 0x1FFFU;
    std::ranges::copy(row, page.begin() + static_cast<std::ptrdiff_t>(end - row.size()));
    Store16(page.data() + format_.slots_offset + 2 * count, (end - row.size()) | flags);
    Store16(page.data() + format_.slot_count_offset, count + 1);
    Store16(page.data() + 2, Room(*place) - row.size() - 2);
    return {*place, static_cast<std::uint8_t>(count)};
}

// Where a row's bytes are.
jet::RowId PlainWriter::Target(jet::RowId id) {
    if ((Slot(id) & kDeleted) != kMoved) return id;
    const std::uint32_t word = Load32(Page(id.page).data() + (Slot(id) & 0x1FFFU));
    return {word >> 8, static_cast<std::uint8_t>(word & 0xFFU)};
}

void PlainWriter::CountRows(int difference) {
    auto counters = jet::ReadDefinitionCounters(Page(table_.page), format_);
    counters.rows += static_cast<std::uint32_t>(difference);
    jet::WriteDefinitionCounters(Page(table_.page), format_, counters);
}

jet::RowId PlainWriter::Insert(const PlainRow& row) {
    const jet::RowId id = Store(Encode(row), 0);
    for (const jet::RealIndex& index : table_.real_indexes)
        PutKey(index, Key(index, row, id));
    CountRows(1);
    return id;
}

void PlainWriter::Update(jet::RowId id, const PlainRow& before, const PlainRow& row) {
    const Bytes bytes = Encode(row);
    jet::RowId place = Target(id);
    if (bytes.size() <= Length(place) + Room(place.page)) {
        Resize(place, bytes.size(), Slot(place) & kDeleted);
    } else {
        const jet::RowId moved = Store(bytes, kTarget);
        if (place != id) Resize(place, 0, kDeleted);
        Resize(id, 4, kMoved);
        base::StoreLittle(Page(id.page).data() + (Slot(id) & 0x1FFFU),
                          moved.page << 8 | std::uint32_t{moved.slot});
        place = moved;
    }
    std::ranges::copy(bytes, Page(place.page).begin() + (Slot(place) & 0x1FFF));
    for (const jet::RealIndex& index : table_.real_indexes) {
        const Bytes old_key = Key(index, before, id);
        const Bytes key = Key(index, row, id);
        if (old_key == key) continue;
        TakeKey(index, old_key);
        PutKey(index, key);
    }
}

void PlainWriter::Delete(jet::RowId id, const PlainRow& before, bool leave_orphan) {
    const jet::RowId place = Target(id);
    if (place != id && leave_orphan)
        ++orphans_;
    else if (place != id)
        Resize(place, 0, kDeleted);
    Resize(id, 0, kDeleted);
    for (const jet::RealIndex& index : table_.real_indexes)
        TakeKey(index, Key(index, before, id));
    CountRows(-1);
}

// ------------------------------------------------------------------------- indexes

jet::Bytes PlainWriter::Key(const jet::RealIndex& index, const PlainRow& row, jet::RowId id) {
    const jet::RealIndexColumn& part = index.columns[0];
    const jet::ColumnDefinition& column = *table_.FindColumn(part.column);
    jet::Value value = jet::Value::Long(row.id);
    if (column.is_text())
        value = jet::Value::Text(column.variable_index == 0 ? row.name : row.note);
    Bytes key;
    jet::AppendKeyPart(*context_, column, part.ascending, value, key);
    base::AppendBig(key, id.page << 8 | std::uint32_t{id.slot});
    return key;
}

PlainWriter::IndexPage PlainWriter::ReadIndex(PageNumber number) {
    const auto page = Page(number);
    IndexPage content;
    content.is_leaf = page[0] == std::byte{4};
    const std::byte* links = page.data() + format_.index_links_offset;
    content.previous = Load32(links);
    content.next = Load32(links + 4);
    content.tail = Load32(links + 8);
    const std::size_t prefix =
        format_.jet4() ? Load16(page.data() + format_.index_prefix_offset)
                       : std::to_integer<std::size_t>(page[format_.index_prefix_offset]);
    std::size_t start = format_.index_entries_offset;
    Bytes first;
    for (std::size_t bit = 0; format_.index_mask_offset + bit / 8 < format_.index_entries_offset;
         ++bit) {
        if ((std::to_integer<unsigned>(page[format_.index_mask_offset + bit / 8]) >> (bit % 8) &
             1U) == 0)
            continue;
        const std::size_t end = format_.index_entries_offset + bit;
        Bytes entry;
        if (!first.empty())
            entry.assign(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(prefix));
        entry.insert(entry.end(), page.begin() + static_cast<std::ptrdiff_t>(start),
                     page.begin() + static_cast<std::ptrdiff_t>(end));
        if (first.empty()) first = entry;
        Child& child = content.entries.emplace_back();
        if (!content.is_leaf) {
            child.page = base::LoadBig<std::uint32_t>(entry.data() + entry.size() - 4);
            entry.resize(entry.size() - 4);
        }
        child.last = std::move(entry);
        start = end;
    }
    return content;
}

// Without a common prefix, and with level 0 whatever it is. False: it does not fit.
bool PlainWriter::WriteIndex(PageNumber number, const IndexPage& content) {
    std::vector<std::size_t> ends;
    Bytes area;
    for (const Child& entry : content.entries) {
        area.insert(area.end(), entry.last.begin(), entry.last.end());
        if (!content.is_leaf) base::AppendBig(area, entry.page);
        ends.push_back(area.size());
    }
    const std::size_t room = format_.page_size - format_.index_entries_offset;
    if (area.size() > room) return false;
    const auto page = Page(number);
    std::ranges::fill(page, std::byte{0});
    page[0] = content.is_leaf ? std::byte{4} : std::byte{3};
    page[1] = std::byte{1};
    Store16(page.data() + 2, room - area.size());
    base::StoreLittle(page.data() + 4, table_.page);
    SetLink(number, 0, content.previous);
    SetLink(number, 1, content.next);
    SetLink(number, 2, content.is_leaf ? 0 : content.tail);
    for (const std::size_t end : ends)
        page[format_.index_mask_offset + end / 8] |= static_cast<std::byte>(1U << end % 8);
    std::ranges::copy(area,
                      page.begin() + static_cast<std::ptrdiff_t>(format_.index_entries_offset));
    return true;
}

void PlainWriter::SetLink(PageNumber page, std::size_t which, PageNumber target) {
    base::StoreLittle(Page(page).data() + format_.index_links_offset + 4 * which, target);
}

jet::Bytes PlainWriter::Last(PageNumber page) {
    const IndexPage content = ReadIndex(page);
    if (!content.is_leaf) return Last(content.tail);
    return content.entries.empty() ? Bytes() : content.entries.back().last;
}

void PlainWriter::ExpectExactNodes() {
    for (const jet::RealIndex& index : table_.real_indexes)
        for (const PageNumber page : Members(index.map)) {
            const IndexPage content = ReadIndex(page);
            if (content.is_leaf) continue;
            for (const Child& child : content.entries)
                EXPECT_EQ(Last(child.page), child.last)
                    << "page " << page << ": no entry for child " << child.page;
        }
}

// Halves, and halves of those, until each fits.
std::vector<PlainWriter::Child> PlainWriter::StoreLeaf(PageNumber page, IndexPage content) {
    if (content.entries.empty()) return {};
    if (WriteIndex(page, content)) return {{content.entries.back().last, page}};
    EXPECT_GT(content.entries.size(), 1U) << "an entry that no page holds";
    if (content.entries.size() == 1) return {};
    const auto middle =
        content.entries.begin() + static_cast<std::ptrdiff_t>(content.entries.size() / 2);
    const PageNumber added = NewPage(map_);
    IndexPage right{true, page, content.next, 0, {middle, content.entries.end()}};
    content.entries.erase(middle, content.entries.end());
    if (content.next != 0) SetLink(content.next, 0, added);
    content.next = added;
    std::vector<Child> behind = StoreLeaf(added, std::move(right));
    std::vector<Child> parts = StoreLeaf(page, std::move(content));
    parts.insert(parts.end(), behind.begin(), behind.end());
    return parts;
}

// Links to neighbours stay what they are, even where those are gone; new nodes have none.
std::vector<PlainWriter::Child> PlainWriter::StoreNode(PageNumber page, const IndexPage& old,
                                                       std::vector<Child> children) {
    if (children.empty()) return {};
    IndexPage content{false,
                      old.previous,
                      old.next,
                      children.back().page,
                      {children.begin(), children.end() - 1}};
    if (WriteIndex(page, content)) return {{children.back().last, page}};
    const auto middle = children.begin() + static_cast<std::ptrdiff_t>(children.size() / 2);
    std::vector<Child> parts = StoreNode(page, old, {children.begin(), middle});
    const std::vector<Child> behind = StoreNode(NewPage(map_), {}, {middle, children.end()});
    parts.insert(parts.end(), behind.begin(), behind.end());
    return parts;
}

std::vector<PlainWriter::Child> PlainWriter::Put(PageNumber page, const Bytes& key) {
    IndexPage content = ReadIndex(page);
    const auto at = std::ranges::lower_bound(content.entries, key, {}, &Child::last);
    const auto position = at - content.entries.begin();
    if (content.is_leaf) {
        content.entries.insert(at, {key, 0});
        return StoreLeaf(page, std::move(content));
    }
    std::vector<Child> children = content.entries;
    children.push_back({Last(content.tail), content.tail});
    const auto parts = Put(children[static_cast<std::size_t>(position)].page, key);
    children.erase(children.begin() + position);
    children.insert(children.begin() + position, parts.begin(), parts.end());
    return StoreNode(page, content, std::move(children));
}

std::vector<PlainWriter::Child> PlainWriter::Take(PageNumber page, const Bytes& key) {
    IndexPage content = ReadIndex(page);
    const auto at = std::ranges::lower_bound(content.entries, key, {}, &Child::last);
    const auto position = at - content.entries.begin();
    if (content.is_leaf) {
        EXPECT_TRUE(at != content.entries.end() && at->last == key) << "no entry for this row";
        if (at != content.entries.end()) content.entries.erase(at);
        if (!content.entries.empty()) return StoreLeaf(page, std::move(content));
        if (content.previous != 0) SetLink(content.previous, 1, content.next);
        if (content.next != 0) SetLink(content.next, 0, content.previous);
    } else {
        std::vector<Child> children = content.entries;
        children.push_back({Last(content.tail), content.tail});
        const auto parts = Take(children[static_cast<std::size_t>(position)].page, key);
        children.erase(children.begin() + position);
        children.insert(children.begin() + position, parts.begin(), parts.end());
        if (!children.empty()) return StoreNode(page, content, std::move(children));
    }
    FreePage(map_, page);
    return {};
}

// The root keeps its number: what it held moves to a page below it.
void PlainWriter::RaiseRoot(PageNumber root, std::vector<Child> parts) {
    if (parts.size() == 1) return;
    const IndexPage moved = ReadIndex(root);
    const PageNumber below = NewPage(map_);
    EXPECT_TRUE(WriteIndex(below, moved));
    if (moved.is_leaf) SetLink(parts[1].page, 0, below);
    parts[0].page = below;
    StoreNode(root, {}, std::move(parts));
}

void PlainWriter::PutKey(const jet::RealIndex& index, const Bytes& key) {
    map_ = index.map;
    RaiseRoot(index.root, Put(index.root, key));
}

void PlainWriter::TakeKey(const jet::RealIndex& index, const Bytes& key) {
    map_ = index.map;
    const IndexPage root = ReadIndex(index.root);
    if (root.is_leaf && root.entries.size() == 1) {
        EXPECT_TRUE(WriteIndex(index.root, {}));
        return;
    }
    // Without the common prefix that it had, a page may be too large even with an entry less.
    std::vector<Child> parts = Take(index.root, key);
    EXPECT_FALSE(parts.empty());
    if (!parts.empty()) RaiseRoot(index.root, std::move(parts));
}

}  // namespace test_support
