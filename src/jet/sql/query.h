// Query: a SELECT that is bound to its tables and can be run.
// Where each row of the result is one row of one table (no join, grouping, DISTINCT or UNION), the
// result is a list of row ids whose values are read on demand; otherwise it is made of values.
#pragma once

#include "base/status.h"
#include "jet/database.h"
#include "jet/sql/access_path.h"
#include "jet/sql/ast.h"
#include "jet/sql/bind.h"
#include "jet/sql/row_walk.h"
#include "jet/sql/stored_rows.h"

#include <memory>
#include <string>
#include <vector>

namespace jet::sql {

class KeySorter;

using ResultRow = std::vector<Value>;

// The rows of a table that make a result, in its order.
struct FoundRows {
    std::vector<RowId> ids;
    StoredRows stored;  // of the same rows, the outputs in order; perhaps none is held
};

class Query {
public:
    // `session` must outlive the query; its tables must not be altered while it lives.
    // `outer` is the scope of the expression around a subquery; it is needed during this call only.
    static base::Result<std::unique_ptr<Query>> Prepare(SelectStatement select, Session& session,
                                                        Scope* outer = nullptr);
    ~Query();

    // Of the output columns, in order.
    const std::vector<std::u16string>& names() const { return names_; }

    // nullptr: the rows are no rows of a table.
    Table* table() const;
    // The table's column that an output shows; nullopt: a computed value. Requires: table().
    std::optional<std::size_t> TableColumn(std::size_t output) const;

    // Requires: table(). The rows in the order of the result.
    base::Result<FoundRows> CollectRows();
    // nullptr: the rows have to be sorted or cut first, so that CollectRows is needed.
    base::Result<std::unique_ptr<RowWalk>> Walk();
    // `outputs` are positions in names(); `values` has the same size. 3167: the row is gone.
    base::Status ReadRow(RowId row, std::span<const std::size_t> outputs, std::span<Value> values);

    // All outputs of rows found by CollectRows.
    base::Result<std::vector<ResultRow>> ReadRows(const FoundRows& found);

    // Of a subquery: the columns of the statements around it that it uses.
    std::vector<OuterUse> outer_uses() const;
    // The column that an output shows as it is, be the rows a table's or not; nullptr: a computed
    // value.
    const ColumnDesign* OutputColumn(std::size_t output) const;

    // True: there is a row.
    base::Result<bool> HasRows();
    // All rows, whatever their origin.
    base::Result<std::vector<ResultRow>> Rows();

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

    base::Status ForEachRow(const std::function<base::Status(const SourceRows&)>& take);
    base::Result<std::vector<Sorted>> Produce();
    base::Result<Sorted> MakeRow(EvalContext& context) const;
    base::Status AppendOrderKey(EvalContext& context, std::string& key) const;
    // The key of the row that `walk` has met.
    base::Status AppendOrderKey(RowWalk& walk, std::string& key) const;
    base::Result<std::vector<RowId>> CollectUnsorted();
    StoredRows StoreOutputs() const;
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
    bool row_wise_ = false;
};

}  // namespace jet::sql
