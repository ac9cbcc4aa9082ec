#include "jet/index/index_shape.h"

#include "jet/index/index_set.h"
#include "jet/tables/catalog.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace jet::test {
namespace {

std::size_t Shared(const Bytes& a, const Bytes& b) {
    return static_cast<std::size_t>(std::ranges::mismatch(a, b).in1 - a.begin());
}

// Leaves that are filled one after the other.
class IdealPacking {
public:
    explicit IdealPacking(const Format& format) : format_(format) {}

    void Add(const Bytes& entry) {
        const std::size_t prefix =
            count_ == 0 ? 0 : std::min(Shared(first_, entry), LongestPrefix());
        if (count_ > 0 && bytes_ + entry.size() - count_ * prefix <= IndexRoom(format_)) {
            ++count_;
            bytes_ += entry.size();
            return;
        }
        ++leaves_;
        first_ = entry;
        count_ = 1;
        bytes_ = entry.size();
    }
    std::size_t leaves() const { return std::max<std::size_t>(leaves_, 1); }

private:
    std::size_t LongestPrefix() const { return format_.index_prefix_bytes == 1 ? 255 : 65535; }

    const Format& format_;
    Bytes first_;
    std::size_t count_ = 0;
    std::size_t bytes_ = 0;  // of all entries with their prefixes
    std::size_t leaves_ = 0;
};

void CountPages(FileContext& file, const RealIndex& index, IndexShape& shape) {
    const auto pages = file.Map(index.map).Members();
    ASSERT_TRUE(pages.ok()) << pages.status().message();
    for (const PageNumber page : pages.value()) {
        const auto view = file.store.Read(page);
        ASSERT_TRUE(view.ok());
        const auto bytes = view.value().bytes();
        if (bytes[0] == static_cast<std::byte>(PageType::kIndexNode)) {
            ++shape.nodes;
            continue;
        }
        ++shape.leaves;
        const auto next =
            base::LoadLittle<std::uint32_t>(bytes.data() + file.format.index_links_offset + 4);
        if (next != 0 && IsSparse(UsedBytes(bytes, file.format), file.format)) ++shape.sparse;
    }
}

void CountLevels(FileContext& file, const RealIndex& index, IndexShape& shape) {
    for (PageNumber page = index.root; shape.levels < kMaxIndexLevels; ++shape.levels) {
        const auto view = file.store.Read(page);
        ASSERT_TRUE(view.ok());
        const auto bytes = view.value().bytes();
        if (bytes[0] == static_cast<std::byte>(PageType::kIndexLeaf)) return;
        page = base::LoadLittle<std::uint32_t>(bytes.data() + file.format.index_links_offset + 8);
    }
}

}  // namespace

IndexShape ShapeOf(Database& database, std::u16string_view name, std::size_t index) {
    IndexShape shape;
    const auto page = database.pages().Read(0);
    FileContext file(database.pages(), ReadPageHeader(page.value().bytes(), "").value());
    Catalog catalog(file);
    const auto entry = catalog.FindTable(name);
    EXPECT_TRUE(entry.ok() && entry.value() != nullptr);
    const auto table =
        ReadTableDefinition(file.store, file.format, file.text, entry.value()->definition_page());
    EXPECT_TRUE(table.ok()) << table.status().message();
    CountPages(file, table.value().real_indexes[index], shape);
    CountLevels(file, table.value().real_indexes[index], shape);
    const IndexSet indexes(file, table.value());
    IdealPacking ideal(file.format);
    auto place = indexes.tree(index).Seek({});
    for (Bytes bytes; place.ok() && !place.value().at_end(); ++shape.entries) {
        place.value().view.CopyEntry(place.value().entry, bytes);
        ideal.Add(bytes);
        const auto status = indexes.tree(index).Next(place.value());
        EXPECT_TRUE(status.ok()) << status.message();
    }
    EXPECT_TRUE(place.ok()) << place.status().message();
    shape.ideal_leaves = ideal.leaves();
    return shape;
}

}  // namespace jet::test
