// IndexSet: all real indexes of a table and what a change of a row means for them.
#pragma once

#include "jet/index/index_tree.h"
#include "jet/values/value.h"

#include <memory>

namespace jet {

class IndexSet {
public:
    // Both must outlive the set.
    IndexSet(FileContext& file, const TableDefinition& definition);

    std::size_t size() const { return trees_.size(); }
    IndexTree& tree(std::size_t index) const { return *trees_[index]; }

    // A row's key in each index; nullopt: it has no entry there. `values` go with
    // definition.columns.
    using Keys = std::vector<std::optional<Bytes>>;
    Keys KeysOf(std::span<const Value> values) const;
    std::optional<Bytes> RowKeyOf(std::size_t index, std::span<const Value> values) const;

    // 3058: a null where none may be; 3022: some other row than `row` has the key.
    base::Status Check(std::size_t index, const std::optional<Bytes>& key,
                       std::span<const Value> values, RowId row) const;
    base::Status Insert(std::size_t index, const std::optional<Bytes>& key, RowId row);
    base::Status Remove(std::size_t index, const std::optional<Bytes>& key, RowId row);

    // The key of the first columns of an index for given values, as its entries begin.
    Bytes KeyOf(std::size_t index, std::span<const Value> values_of_its_columns) const;
    // Positions of an index's columns among definition.columns.
    const std::vector<std::size_t>& ColumnsOf(std::size_t index) const { return columns_[index]; }

private:
    bool IsPrimary(std::size_t index) const;

    FileContext& file_;
    const TableDefinition& definition_;
    std::vector<std::unique_ptr<IndexTree>> trees_;
    std::vector<std::vector<std::size_t>> columns_;
};

}  // namespace jet
