// RecordsetRows: the rows of a Recordset and which of them is current. There is a class for each
// way to have them: a cursor that goes forward only (ForwardRows), a list of row ids whose
// values are read on demand (KeysetRows), a list of values (ValueRows).
#pragma once

#include "jet/change_counter.h"
#include "jet/held_rows_content.h"
#include "jet/sql/plans/query.h"
#include "jet/sql/plans/table_query.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace jet {

// Called with the number of rows read so far; may be empty.
using RowProgress = std::function<void(std::int64_t)>;

class RecordsetRows {
public:
    virtual ~RecordsetRows() = default;
    RecordsetRows(const RecordsetRows&) = delete;
    RecordsetRows& operator=(const RecordsetRows&) = delete;

    // Whether there were any when they were found.
    bool has_rows() const { return has_rows_; }
    bool bof() const { return !has_rows_ || position_ < 0; }
    bool eof() const { return !has_rows_ || at_end_; }
    bool on_row() const { return has_rows_ && position_ >= 0 && !at_end_; }

    // Requires for the moves: has_rows(). Here they are those in a list of count() rows.
    // 3021: there is no row to move to or from; 3219: these rows are met in one direction only.
    virtual base::Status MoveFirst();
    virtual base::Status MoveLast();
    virtual base::Status MoveNext();
    virtual base::Status MovePrevious();
    virtual base::Status MoveTo(std::int64_t row);
    // -1: not known.
    virtual std::int64_t count() const = 0;

    // Of the current row, among those of the query's table. Requires: on_row(); the query is a
    // TableQuery.
    virtual RowId id() const = 0;
    // Of the current row, by its place among the query's outputs. Requires: on_row(), and
    // holds_values() or a query that is there.
    virtual base::Result<Value> Field(std::size_t field) = 0;
    // See Recordset::Hold. 3219: these rows are met in one direction only.
    base::Result<HeldRows> Hold(std::span<const std::size_t> fields, const RowProgress& progress);
    // The current row's field was given a new value in the table.
    virtual void NoteWritten(std::size_t field, const Value& value) = 0;

    // Values are here and stay as they are, whatever becomes of the query.
    virtual bool holds_values() const = 0;
    // What takes the place of these rows when a design is about to change; nullptr: they stay.
    virtual std::unique_ptr<RecordsetRows> BeforeDesignChange() { return nullptr; }
    // `query` is made anew from the same text; nullptr: its table is gone.
    virtual void AfterDesignChange(sql::TableQuery* query) = 0;

protected:
    RecordsetRows() = default;
    // In a list of count() rows.
    void StandOn(std::int64_t position);

    // Fills in places and fields for all rows; may move. Here each field is loose.
    virtual base::Status HoldFields(std::span<const std::size_t> fields, HeldRows::Content& held,
                                    const RowProgress& progress);
    // Adds the values of the fields `loose` of all rows.
    base::Status HoldLoose(std::span<const std::size_t> loose, HeldRows::Content& held,
                           const RowProgress& progress);

    bool has_rows_ = false;
    bool at_end_ = false;
    std::int64_t position_ = -1;  // -1: before the first row
};

// Rows of a table. The fields that were asked for once are read together on each next row and
// cached.
class TableRows : public RecordsetRows {
public:
    base::Result<Value> Field(std::size_t field) override;
    void NoteWritten(std::size_t, const Value&) final {}
    bool holds_values() const final { return false; }
    void AfterDesignChange(sql::TableQuery* query) override;

protected:
    // `query` and `changes` must outlive this.
    TableRows(sql::TableQuery& query, const ChangeCounter& changes)
        : query_(&query), changes_(changes) {}
    // Columns of the current row by their places in the table's design.
    virtual base::Status ReadColumns(std::span<const std::size_t> columns, std::span<Value> values);

    sql::TableQuery* query_;  // nullptr: its table is gone
    const ChangeCounter& changes_;
    bool cache_valid_ = false;

private:
    static constexpr std::size_t kNotCached = SIZE_MAX;

    base::Status FillCache(std::size_t field);
    void AddToCache(std::size_t field);
    base::Status ReadCachedFields();

    std::vector<std::size_t> cached_fields_;
    std::vector<std::size_t> cached_columns_;  // in the table's design; empty: some are computed
    std::vector<std::size_t> place_in_cache_;  // of each field; kNotCached
    std::vector<Value> cache_;  // in the order of cached_fields_, as are the failures
    std::vector<base::Status> cache_failures_;
    RowId cache_row_;
    std::uint64_t cache_changes_ = 0;
};

class KeysetRows final : public TableRows {
public:
    // Stands on the first row.
    KeysetRows(sql::TableQuery& query, const ChangeCounter& changes, sql::FoundRows found);
    // The rest of the rows of another kind, which has had some if `had_rows`.
    KeysetRows(sql::TableQuery& query, const ChangeCounter& changes, std::vector<RowId> ids,
               bool had_rows);

    std::int64_t count() const override { return static_cast<std::int64_t>(found_.ids.size()); }
    RowId id() const override { return found_.ids[static_cast<std::size_t>(position_)]; }
    base::Result<Value> Field(std::size_t field) override;
    void AfterDesignChange(sql::TableQuery* query) override;

private:
    // Which of `fields` are held as they are stored, and which columns these are.
    struct HoldPlan {
        std::vector<std::size_t> columns;
        std::vector<std::size_t> loose;
    };

    base::Status HoldFields(std::span<const std::size_t> fields, HeldRows::Content& held,
                            const RowProgress& progress) override;
    HoldPlan PlanHolding(std::span<const std::size_t> fields, HeldRows::Content& held) const;
    base::Status PutAway(std::span<const std::size_t> columns, HeldRows::Content& held,
                         const RowProgress& progress) const;

    sql::FoundRows found_;
};

class ForwardRows final : public TableRows {
public:
    // Stands on the first row that `cursor`, a new one of the query, meets.
    static base::Result<std::unique_ptr<RecordsetRows>>
    Start(sql::TableQuery& query, const ChangeCounter& changes,
          std::unique_ptr<sql::FilteredCursor> cursor);

    base::Status MoveFirst() override;
    base::Status MoveLast() override;
    base::Status MoveNext() override;
    base::Status MovePrevious() override;
    base::Status MoveTo(std::int64_t row) override;
    std::int64_t count() const override { return -1; }
    RowId id() const override { return met_; }
    // A list of the rows from the current one on.
    std::unique_ptr<RecordsetRows> BeforeDesignChange() override;

private:
    static constexpr std::uint64_t kPassed = UINT64_MAX;

    ForwardRows(sql::TableQuery& query, const ChangeCounter& changes,
                std::unique_ptr<sql::FilteredCursor> cursor)
        : TableRows(query, changes), cursor_(std::move(cursor)) {}
    base::Status Step();
    base::Status ReadColumns(std::span<const std::size_t> columns,
                             std::span<Value> values) override;

    std::unique_ptr<sql::FilteredCursor> cursor_;
    RowId met_;                      // the current row
    std::uint64_t met_changes_ = 0;  // when the cursor met it; kPassed: the cursor is past it
};

class ValueRows final : public RecordsetRows {
public:
    // `ids`: the rows' own where they are those of a table; otherwise empty. Stands on the first.
    ValueRows(std::vector<sql::ResultRow> values, sql::FieldFailures failures,
              std::vector<RowId> ids);

    std::int64_t count() const override { return static_cast<std::int64_t>(values_.size()); }
    RowId id() const override { return ids_[static_cast<std::size_t>(position_)]; }
    base::Result<Value> Field(std::size_t field) override;
    void NoteWritten(std::size_t field, const Value& value) override;
    bool holds_values() const override { return !values_.empty(); }
    void AfterDesignChange(sql::TableQuery*) override {}

private:
    std::vector<sql::ResultRow> values_;
    sql::FieldFailures failures_;
    std::vector<RowId> ids_;
};

}  // namespace jet
