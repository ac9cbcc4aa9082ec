// FindIndex: the folded texts of all tables of a snapshot, so that each key typed into the Find
// field is answered by one pass over the memory. Takes about as much memory as the texts. Nobody
// changes it once it is made; any thread may read it.
#pragma once

#include "browser/find_query.h"
#include "browser/table_snapshot.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace browser {

class FindIndex {
public:
    // Called between tables; true ends the work.
    using Stop = std::function<bool()>;
    // Whether the file of a table is missing.
    using IsMissing = std::function<bool(std::size_t table)>;

    // nullptr: it was stopped. Takes about a second for a million tables.
    static std::unique_ptr<const FindIndex> Make(TableSnapshotPointer tables, const Stop& stop);

    // The tables, in their order, for which the whole query holds; none if it asks for nothing.
    std::vector<std::uint32_t> Find(const FindQuery& query, const IsMissing& is_missing) const;

private:
    // Texts of a run of tables, one after the other: each table's are fields that end with
    // kFieldEnd, in the order of FindField.
    struct Block {
        std::size_t first_table = 0;
        std::string text;
        std::vector<std::uint32_t> ends;  // of each table's texts
    };
    using Marks = std::vector<char>;  // 1 for each table that is meant

    explicit FindIndex(TableSnapshotPointer tables) : tables_(std::move(tables)) {}
    void Add(std::size_t table);
    void CountBytes();
    Marks MarksOf(const FindTerm& term, const IsMissing& is_missing) const;
    Marks MarksOfText(const FindTerm& term) const;
    void MarkText(const Block& block, const FindTerm& term, std::size_t rare, Marks& marks) const;
    std::size_t RarestByte(const std::string& text) const;
    bool HasFlag(std::size_t table, FindFlag flag, const IsMissing& is_missing) const;
    bool IsInRange(std::size_t table, const FindTerm& term) const;

    TableSnapshotPointer tables_;
    std::vector<Block> blocks_;
    std::array<std::uint64_t, 256> byte_counts_{};
    std::vector<std::int32_t> years_;  // 0: the text has none
};

}  // namespace browser
