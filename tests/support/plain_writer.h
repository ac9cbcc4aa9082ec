// PlainWriter: a second hand for database files, deliberately plain and no part of the engine. It
// changes a table the way other engines do: nodes of indexes say level 0, single pages are split in
// halves and never joined, new pages go to the end of the file, the map of free pages is moved on
// or left behind, and where a moved row is deleted its target may stay. And it expects what others
// expect: a node's key that is not the last entry below its child fails the test.
// It works on the bytes of a whole file that nobody else has open.
#pragma once

#include "jet/rows/file_context.h"
#include "jet/rows/table_definition.h"
#include "jet/tables/database.h"

#include <memory>
#include <string>
#include <vector>

namespace test_support {

// A table of a LONG ("ID", first) and two texts, in this order; every index is over one of them.
struct PlainRow {
    std::int32_t id = 0;
    std::u16string name;
    std::u16string note;
    bool operator==(const PlainRow&) const = default;
};

class PlainWriter {
public:
    PlainWriter(std::vector<std::byte> file, std::u16string_view table);

    // Fails the test where a node's key is not the last entry below its child.
    void ExpectExactNodes();

    // Requires: the keys of unique indexes are not taken.
    jet::RowId Insert(const PlainRow& row);
    // `before`: what the row holds.
    void Update(jet::RowId id, const PlainRow& before, const PlainRow& row);
    // `leave_orphan`: the target of a moved row stays behind, with nothing that leads to it.
    void Delete(jet::RowId id, const PlainRow& before, bool leave_orphan);
    // The map of free pages begins behind the last page from now on: free pages before it are lost.
    void MoveFreeMapOn();

    int orphans() const { return orphans_; }
    std::vector<std::byte> TakeFile() { return std::move(file_); }

private:
    using Bytes = jet::Bytes;
    using PageNumber = jet::PageNumber;
    struct Child {
        Bytes last;
        PageNumber page = 0;
    };
    struct IndexPage {
        bool is_leaf = true;
        PageNumber previous = 0;
        PageNumber next = 0;
        PageNumber tail = 0;
        std::vector<Child> entries;  // of a leaf: without pages
    };

    std::span<std::byte> Page(PageNumber page);
    std::span<std::byte> MapRow(jet::RowPointer map);
    bool Assign(jet::RowPointer map, PageNumber page, bool value);
    PageNumber AddPage();
    PageNumber NewPage(jet::RowPointer map);
    void ReferToBitmap(jet::RowPointer map);
    void FreePage(jet::RowPointer map, PageNumber page);
    std::vector<PageNumber> Members(jet::RowPointer map);

    Bytes Encode(const PlainRow& row) const;
    jet::RowId Store(const Bytes& row, std::uint16_t flags);
    std::size_t Room(PageNumber page);
    std::uint16_t Slot(jet::RowId id);
    std::size_t Length(jet::RowId id);
    void Resize(jet::RowId id, std::size_t length, std::uint16_t flags);
    jet::RowId Target(jet::RowId id);
    void CountRows(int difference);

    Bytes Key(const jet::RealIndex& index, const PlainRow& row, jet::RowId id);
    void PutKey(const jet::RealIndex& index, const Bytes& key);
    void TakeKey(const jet::RealIndex& index, const Bytes& key);
    IndexPage ReadIndex(PageNumber page);
    bool WriteIndex(PageNumber page, const IndexPage& content);
    Bytes Last(PageNumber page);
    std::vector<Child> Put(PageNumber page, const Bytes& key);
    std::vector<Child> Take(PageNumber page, const Bytes& key);
    std::vector<Child> StoreLeaf(PageNumber page, IndexPage content);
    std::vector<Child> StoreNode(PageNumber page, const IndexPage& old,
                                 std::vector<Child> children);
    void RaiseRoot(PageNumber root, std::vector<Child> parts);
    void SetLink(PageNumber page, std::size_t which, PageNumber target);

    std::vector<std::byte> file_;
    const jet::Format& format_;
    std::unique_ptr<jet::PageStore> store_;  // as the file was, for keys and the definition
    std::unique_ptr<jet::FileContext> context_;
    jet::TableDefinition table_;
    jet::RowPointer map_;  // of the index at work
    int orphans_ = 0;
};

}  // namespace test_support
