// The inside of a Recordset. Its rows are, in this order of preference, a walk that meets them one
// by one, a list of row ids whose values are read on demand, or a list of values.
#pragma once

#include "jet/connection_impl.h"
#include "jet/recordset.h"
#include "jet/sql/plans/query.h"

#include <cstdint>
#include <memory>
#include <optional>
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
    base::Status OpenQuery(sql::SelectStatement select, std::u16string_view text,
                           Connection::Impl& connection, CursorType cursor, LockType lock);
    void Close();
    bool is_open() const { return connection_ != nullptr; }

    void BeforeDesignChange();
    void AfterDesignChange();

    bool Bof() const { return !has_rows_ || position_ < 0; }
    bool Eof() const { return !has_rows_ || at_end_; }
    base::Status MoveFirst();
    base::Status MoveLast();
    base::Status MoveNext();
    base::Status MovePrevious();
    base::Status MoveTo(std::int64_t row);
    std::int64_t RecordCount() const;

    const std::vector<std::u16string>& names() const { return names_; }
    base::Result<std::size_t> FindField(std::u16string_view name) const;
    base::Result<Value> Field(std::size_t field);
    base::Status SetField(std::u16string_view name, Value value);
    base::Status Update();
    void CancelUpdate() { pending_.clear(); }
    base::Status Delete();

private:
    static constexpr std::size_t kNotLearned = SIZE_MAX;
    static constexpr std::uint64_t kNeverMet = UINT64_MAX;

    struct Pending {
        std::size_t output = 0;
        std::size_t column = 0;  // in the table's design
        Value before;            // as it was stored when the edit began
        Value value;
    };

    base::Status Load();
    base::Status ListRows();
    base::Status Leave();
    base::Status StepWalk();
    std::int64_t count() const;
    void Stand(std::int64_t position);
    bool on_row() const { return has_rows_ && position_ >= 0 && !at_end_; }
    base::Status CheckRow() const;
    base::Result<Table*> WritableTable();
    RowId current() const {
        return walk_ != nullptr ? met_ : found_.ids[static_cast<std::size_t>(position_)];
    }
    base::Status ReadLearned(std::size_t field);
    void Learn(std::size_t field);
    void ForgetLearned();
    base::Status ReadRow();
    base::Status CheckUnchanged(Table& table) const;
    base::Status WritePending(Table& table);

    Connection::Impl* connection_ = nullptr;  // nullptr: closed
    std::u16string text_;
    CursorType cursor_ = CursorType::kForwardOnly;
    LockType lock_ = LockType::kReadOnly;
    std::vector<std::u16string> names_;
    std::unique_ptr<sql::Query> query_;  // nullptr: its table is gone

    std::unique_ptr<sql::RowWalk> walk_;
    RowId met_;  // the walk's current row
    sql::FoundRows found_;
    std::vector<sql::ResultRow> values_;
    sql::FieldFailures failures_;  // of values_
    bool keeps_values_ = false;

    bool has_rows_ = false;
    bool at_end_ = false;
    std::int64_t position_ = -1;  // -1: before the first row

    // Values of the current row, in the order of `learned_`: the fields that were asked for once
    // are read together on the next row.
    std::vector<std::size_t> learned_;
    std::vector<std::size_t> learned_columns_;  // in the table's design; empty: some are computed
    std::vector<std::size_t> place_in_cache_;   // of each field; kNotLearned
    std::vector<Value> cache_;
    std::vector<base::Status> cache_failures_;
    bool cache_valid_ = false;
    RowId cache_row_;
    std::uint64_t cache_changes_ = 0;
    std::uint64_t met_changes_ = 0;  // when the walk met its row; kNeverMet once it is past it

    std::vector<Pending> pending_;
};

}  // namespace jet
