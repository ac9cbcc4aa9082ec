#include "jet/recordset.h"

#include "jet/connection.h"
#include "jet/connection_impl.h"
#include "jet/recordset_impl.h"

#include <cassert>

namespace jet {

using base::Result;
using base::Status;

Recordset::Recordset() : impl_(std::make_unique<Impl>()) {}
Recordset::~Recordset() = default;
Recordset::Recordset(Recordset&& other) noexcept : impl_(std::move(other.impl_)) {}

Recordset& Recordset::operator=(Recordset&& other) noexcept {
    impl_ = std::move(other.impl_);
    return *this;
}

Status Recordset::Open(std::u16string_view sql, Connection& connection, CursorType cursor,
                       LockType lock, CursorLocation) {
    RETURN_IF_ERROR(connection.impl_->MayBeUsed());
    return impl_->OpenText(sql, *connection.impl_, cursor, lock);
}

void Recordset::Close() {
    impl_->Close();
}
bool Recordset::is_open() const {
    return impl_ != nullptr && impl_->is_open();
}

bool Recordset::Bof() const {
    return impl_->Bof();
}
bool Recordset::Eof() const {
    return impl_->Eof();
}
Status Recordset::MoveFirst() {
    return impl_->MoveFirst();
}
Status Recordset::MoveLast() {
    return impl_->MoveLast();
}
Status Recordset::MoveNext() {
    return impl_->MoveNext();
}
Status Recordset::MovePrevious() {
    return impl_->MovePrevious();
}
std::int64_t Recordset::RecordCount() const {
    return impl_->RecordCount();
}
Status Recordset::MoveTo(std::int64_t row) {
    return impl_->MoveTo(row);
}

std::size_t Recordset::FieldCount() const {
    return impl_->names().size();
}

const std::u16string& Recordset::FieldName(std::size_t field) const {
    assert(field < FieldCount());
    return impl_->names()[field];
}

Result<Value> Recordset::Fields(std::u16string_view name) {
    ASSIGN_OR_RETURN(const std::size_t field, impl_->FindField(name));
    return impl_->Field(field);
}

Result<Value> Recordset::Fields(std::size_t field) {
    return impl_->Field(field);
}

Result<HeldRows> Recordset::Hold(std::span<const std::size_t> fields,
                                 const std::function<void(std::int64_t)>& progress) {
    return impl_->Hold(fields, progress);
}

Status Recordset::SetField(std::u16string_view name, Value value) {
    return impl_->SetField(name, std::move(value));
}
Status Recordset::Update() {
    return impl_->Update();
}
void Recordset::CancelUpdate() {
    impl_->CancelUpdate();
}
Status Recordset::Delete() {
    return impl_->Delete();
}

}  // namespace jet
