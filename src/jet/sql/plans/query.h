// Query: a SELECT that is bound to its tables and can be run.
// Where each row of the result is one row of one table (no join, grouping, DISTINCT or UNION), the
// result is a list of row ids whose values are read on demand; otherwise it is made of values.
#pragma once

#include "base/status.h"
#include "jet/sql/expressions/bind.h"
#include "jet/sql/expressions/prepared_select.h"
#include "jet/sql/plans/access_path.h"
#include "jet/sql/plans/row_walk.h"
#include "jet/sql/plans/stored_rows.h"
#include "jet/sql/syntax/ast.h"
#include "jet/tables/database.h"

#include <map>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace jet::sql {

class Joiner;
class KeySorter;

// The rows of a table that make a result, in its order.
struct FoundRows {
    std::vector<RowId> ids;
    StoredRows stored;  // of the same rows, the outputs in order; perhaps none is held
};

// Why outputs have no value, by row and output: one that fails leaves the row its other fields.
using FieldFailures = std::map<std::pair<std::size_t, std::size_t>, base::Status>;

class Query final : public PreparedSelect {
public:
    // `session` must outlive the query; its tables must not be altered while it lives.
    // `outer` is the scope of the expression around a subquery; it is needed during this call only.
    static base::Result<std::unique_ptr<Query>> Prepare(SelectStatement select, Session& session,
                                                        Scope* outer = nullptr);
    ~Query() override;

    // Of the output columns, in order.
    const std::vector<std::u16string>& names() const { return names_; }
    std::size_t column_count() const override { return names_.size(); }

    // nullptr: the rows are no rows of a table.
    Table* table() const;
    // The table's column that an output shows; nullopt: a computed value. Requires: table().
    std::optional<std::size_t> TableColumn(std::size_t output) const;

    // Requires: table(). The rows in the order of the result.
    base::Result<FoundRows> CollectRows();
    // nullptr: the rows have to be sorted or cut first, so that CollectRows is needed.
    base::Result<std::unique_ptr<RowWalk>> Walk();
    // `outputs` are positions in names(); `values` and `failures` have the same size. 3167: the row
    // is gone.
    base::Status ReadRow(RowId row, std::span<const std::size_t> outputs, std::span<Value> values,
                         std::span<base::Status> failures);

    // All outputs of rows found by CollectRows. `failures`, here and below: nullptr: an output that
    // fails is the answer.
    base::Result<std::vector<ResultRow>> ReadRows(const FoundRows& found,
                                                  FieldFailures* failures = nullptr);

    std::vector<OuterUse> outer_uses() const override;
    // The column that an output shows as it is, be the rows a table's or not; nullptr: a computed
    // value.
    const ColumnDesign* OutputColumn(std::size_t output) const;

    base::Result<bool> HasRows() override;
    // All rows, whatever their origin.
    base::Result<std::vector<ResultRow>> Rows() override { return Rows(nullptr); }
    base::Result<std::vector<ResultRow>> Rows(FieldFailures* failures);

private:
    class Grouping;
    struct Sorted;

    Query(SelectStatement select, Session& session, Scope* outer);
    base::Status Bind();
    base::Status FindPath(bool outer_known);
    // Outer columns are known when a subquery is run, not before.
    base::Status RefreshPath();
    base::Status ExpandStars();
    base::Status ResolveOrder();
    base::Status BindExpressions();
    base::Status CheckGrouping() const;
    base::Status CheckDistinctOrder() const;
    base::Status PrepareUnions();
    void NameOutputs();
    std::u16string NameOf(const OutputItem& item, std::size_t& unnamed) const;
    bool IsGrouped() const { return !select_.group_by.empty() || !aggregates_.empty(); }
    bool IsRowWise() const;

    // False: no more rows are wanted.
    using TakeRow = std::function<base::Result<bool>(const SourceRows&)>;
    base::Status ForEachRow(const TakeRow& take);
    base::Status ForEachCombination(const TakeRow& take);
    base::Result<std::vector<Sorted>> Produce();
    base::Result<Sorted> MakeRow(EvalContext& context) const;
    base::Status AppendOrderKey(EvalContext& context, std::string& key) const;
    // The key of the row that `walk` has met.
    base::Status AppendOrderKey(RowWalk& walk, std::string& key) const;
    base::Result<std::vector<RowId>> CollectUnsorted();
    StoredRows StoreOutputs(const StoredFieldReader& reader) const;
    std::size_t RowsToKeep(const KeySorter& keys, std::span<const std::uint32_t> order) const;
    void Finish(std::vector<Sorted>& rows) const;
    void CutToTop(std::vector<Sorted>& rows) const;
    base::Result<std::vector<ResultRow>> UnionRows();

    SelectStatement select_;
    Session& session_;
    Scope scope_;         // of all expressions; of the condition and order alone when row-wise
    Scope output_scope_;  // of the outputs when row-wise
    std::vector<const Expression*> aggregates_;
    std::vector<std::u16string> names_;
    std::vector<std::unique_ptr<Query>> unions_;
    AccessPath path_;
    std::unique_ptr<Joiner> joiner_;  // of several sources; perhaps not made yet
    bool row_wise_ = false;
    bool keeps_failures_ = false;  // of outputs, in the run at hand
};

// What a session's subqueries are made by: Query::Prepare.
base::Result<std::unique_ptr<PreparedSelect>> PrepareSubselect(const SelectStatement& select,
                                                               Session& session, Scope& outer);

}  // namespace jet::sql
