#include "jet/sql/plans/stored_rows.h"

namespace jet::sql {
namespace {

constexpr std::size_t kMaxBytes = 32U << 20;

}  // namespace

StoredRows::StoredRows(Database& database, const StoredFieldReader& reader,
                       std::vector<std::size_t> columns)
    : database_(&database), reader_(&reader), columns_(std::move(columns)),
      changes_(database.changes()) {
    if (!database.in_transaction()) store_ = std::make_shared<FieldStore>();
}

base::Status StoredRows::Add(StoredFields& row) {
    if (store_ == nullptr) return base::Status::Ok();
    fields_.Clear();
    RETURN_IF_ERROR(row.Append(columns_, fields_));
    store_->Add(fields_.bytes());
    if (store_->memory() > kMaxBytes) store_.reset();
    return base::Status::Ok();
}

void StoredRows::Arrange(std::span<const std::uint32_t> order) {
    if (store_ != nullptr) store_->Arrange(order);
}

base::Status StoredRows::Read(std::size_t row, std::size_t place, Value& value) const {
    return reader_->ReadStored((*store_)[row], place, columns_[place], value);
}

}  // namespace jet::sql
