// The inside of a Recordset: its query, its rows (recordset_rows.h), and the edit of the current
// one.
#pragma once

#include "jet/connection_impl.h"
#include "jet/recordset.h"
#include "jet/recordset_rows.h"
#include "jet/sql/plans/query.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace jet {

class Recordset::Impl {
public:
    Impl() = default;
    ~Impl() { Close(); }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    base::Status OpenText(std::u16string_view text, Connection::Impl& connection, CursorType cursor,
                          LockType lock);
    base::Status OpenQuery(sql::SelectStatement&& select, std::u16string text,
                           Connection::Impl& connection, CursorType cursor, LockType lock);
    void Close();
    bool is_open() const { return connection_ != nullptr; }

    void BeforeDesignChange();
    void AfterDesignChange();

    bool Bof() const { return rows_ == nullptr || rows_->bof(); }
    bool Eof() const { return rows_ == nullptr || rows_->eof(); }
    base::Status MoveFirst();
    base::Status MoveLast();
    base::Status MoveNext();
    base::Status MovePrevious();
    base::Status MoveTo(std::int64_t row);
    std::int64_t RecordCount() const;

    const std::vector<std::u16string>& names() const { return names_; }
    base::Result<std::size_t> FindField(std::u16string_view name) const;
    base::Result<Value> Field(std::size_t field);
    base::Result<HeldRows> Hold(std::span<const std::size_t> fields, const RowProgress& progress);
    base::Status SetField(std::u16string_view name, Value value);
    base::Status Update();
    void CancelUpdate() { pending_.clear(); }
    base::Status Delete();

private:
    struct Pending {
        std::size_t output = 0;
        std::size_t column = 0;  // in the table's design
        Value before;            // as it was stored when the edit began
        Value value;
    };

    base::Status Load();
    base::Status Leave();
    base::Status CheckRow() const;
    base::Result<Table*> WritableTable();
    base::Status CheckUnchanged(Table& table) const;
    base::Status WritePending(Table& table);

    Connection::Impl* connection_ = nullptr;  // nullptr: closed
    std::u16string text_;
    CursorType cursor_ = CursorType::kForwardOnly;
    LockType lock_ = LockType::kReadOnly;
    std::vector<std::u16string> names_;
    std::unique_ptr<sql::Query> query_;    // nullptr: its table is gone
    std::unique_ptr<RecordsetRows> rows_;  // of query_; nullptr: closed
    std::vector<Pending> pending_;
};

}  // namespace jet
