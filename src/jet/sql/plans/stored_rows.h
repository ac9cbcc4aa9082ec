// StoredRows: fields of the rows that a cursor has met, as they are stored, so that reading them
// does not have to find the rows again. They are valid as long as nothing has changed since
// (Database::changes), and are dropped when they would take too much memory.
#pragma once

#include "jet/rows/field_bytes.h"
#include "jet/sql/plans/byte_arena.h"
#include "jet/tables/database.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace jet::sql {

// The bytes of stored fields, row by row. Stays as it is once it is made.
class FieldStore {
public:
    FieldStore() = default;
    // `rows` rows without fields, each to be Set.
    explicit FieldStore(std::size_t rows) : rows_(rows) {}

    void Add(std::span<const std::byte> fields) { rows_.push_back(Keep(fields)); }
    void Set(std::size_t row, std::span<const std::byte> fields) { rows_[row] = Keep(fields); }
    // Row `order[i]` becomes row `i`; the others are no more. The bytes stay where they are: to
    // move them costs as much as reading them once in the new order.
    void Arrange(std::span<const std::uint32_t> order) {
        std::vector<std::span<const std::byte>> rows;
        rows.reserve(order.size());
        for (const std::uint32_t row : order)
            rows.push_back(rows_[row]);
        rows_ = std::move(rows);
    }
    std::span<const std::byte> operator[](std::size_t row) const { return rows_[row]; }
    std::size_t size() const { return rows_.size(); }
    // Bytes of memory taken.
    std::size_t memory() const {
        return arena_.size() + rows_.size() * sizeof(std::span<const std::byte>);
    }

private:
    std::span<const std::byte> Keep(std::span<const std::byte> fields) {
        return {arena_.Add(fields.data(), fields.size()), fields.size()};
    }

    ByteArena arena_;
    std::vector<std::span<const std::byte>> rows_;
};

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
    bool are_fresh() const {
        return store_ != nullptr && store_->size() > 0 && database_->changes() == changes_;
    }
    // Of row `row`, the value of the `place`th column. Requires: are_fresh(); row < rows held.
    base::Status Read(std::size_t row, std::size_t place, Value& value) const;
    // The fields themselves, of whoever wants to keep them. Requires: are_fresh().
    std::shared_ptr<const FieldStore> store() const { return store_; }

private:
    Database* database_ = nullptr;
    const StoredFieldReader* reader_ = nullptr;
    std::vector<std::size_t> columns_;
    std::uint64_t changes_ = 0;
    std::shared_ptr<FieldStore> store_;  // nullptr: no rows are taken
    FieldBytes fields_;                  // of the row being added
};

}  // namespace jet::sql
