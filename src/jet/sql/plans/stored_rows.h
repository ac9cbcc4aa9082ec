// StoredRows: fields of the rows that a cursor has met, as they are stored, so that reading them
// does not have to find the rows again. They are valid as long as nothing has changed since
// (Database::changes), and are dropped when they would take too much memory.
#pragma once

#include "jet/sql/plans/byte_arena.h"
#include "jet/tables/database.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace jet::sql {

class StoredRows {
public:
    StoredRows() = default;
    // `columns` are positions in the table's design; `reader`, which is the table's, and `database`
    // must outlive this.
    StoredRows(Database& database, const StoredFieldReader& reader,
               std::vector<std::size_t> columns);

    // Takes the row that a cursor has met last; its reader is this one's.
    base::Status Add(StoredFields& row);
    // Row `order[i]` becomes row `i`; the others are dropped.
    void Arrange(std::span<const std::uint32_t> order);

    // Whether the rows are held and nothing has changed since.
    bool are_fresh() const { return !rows_.empty() && database_->changes() == changes_; }
    // Of row `row`, the value of the `place`th column. Requires: are_fresh(); row < rows held.
    base::Status Read(std::size_t row, std::size_t place, Value& value) const;

private:
    using Fields = std::span<const std::byte>;

    void Drop();

    Database* database_ = nullptr;
    const StoredFieldReader* reader_ = nullptr;
    std::vector<std::size_t> columns_;
    std::uint64_t changes_ = 0;
    bool gathers_ = false;  // further rows are taken
    ByteArena arena_;
    std::vector<Fields> rows_;
    std::vector<std::byte> fields_;  // of the row being added
};

}  // namespace jet::sql
