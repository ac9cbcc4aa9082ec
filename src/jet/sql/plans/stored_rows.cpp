#include "jet/sql/plans/stored_rows.h"

namespace jet::sql {
namespace {

constexpr std::size_t kMaxBytes = 32U << 20;

}  // namespace

StoredRows::StoredRows(Database& database, const StoredFieldReader& reader,
                       std::vector<std::size_t> columns)
    : database_(&database), reader_(&reader), columns_(std::move(columns)),
      changes_(database.changes()), gathers_(!database.in_transaction()) {}

void StoredRows::Drop() {
    gathers_ = false;
    arena_ = {};
    rows_ = {};
}

base::Status StoredRows::Add(StoredFields& row) {
    if (!gathers_) return base::Status::Ok();
    fields_.clear();
    RETURN_IF_ERROR(row.Append(columns_, fields_));
    rows_.emplace_back(arena_.Add(fields_.data(), fields_.size()), fields_.size());
    if (arena_.size() + rows_.size() * sizeof(Fields) > kMaxBytes) Drop();
    return base::Status::Ok();
}

// The bytes are moved too, since they will be read in this order.
void StoredRows::Arrange(std::span<const std::uint32_t> order) {
    if (!gathers_) return;
    ByteArena arena;
    std::vector<Fields> rows;
    rows.reserve(order.size());
    for (const std::uint32_t row : order) {
        const Fields fields = rows_[row];
        rows.emplace_back(arena.Add(fields.data(), fields.size()), fields.size());
    }
    arena_ = std::move(arena);
    rows_ = std::move(rows);
}

base::Status StoredRows::Read(std::size_t row, std::size_t place, Value& value) const {
    return reader_->ReadStored(rows_[row], place, columns_[place], value);
}

}  // namespace jet::sql
