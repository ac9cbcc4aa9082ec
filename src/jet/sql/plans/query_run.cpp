// Query, second half: the rows.
#include "jet/errors.h"
#include "jet/sql/expressions/accumulator.h"
#include "jet/sql/functions/sort_key.h"
#include "jet/sql/plans/join.h"
#include "jet/sql/plans/key_sorter.h"
#include "jet/sql/plans/query.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>
#include <unordered_set>

namespace jet::sql {

using base::Result;
using base::Status;

namespace {

Result<Value> OutputValue(const Expression& e, EvalContext& context) {
    ASSIGN_OR_RETURN(Value value, Evaluate(e, context));
    return IsColumn(e) ? value : WithoutTruth(std::move(value));
}

Status AppendKeyOf(const Expression& e, bool descending, EvalContext& context, std::string& key) {
    if (IsColumn(e)) {
        AppendSortKey((*context.rows)[e.source][e.slot], descending, key);
        return Status::Ok();
    }
    ASSIGN_OR_RETURN(const Value value, Evaluate(e, context));
    AppendSortKey(value, descending, key);
    return Status::Ok();
}

std::string KeyOfAll(const ResultRow& values) {
    std::string key;
    for (const Value& value : values)
        AppendSortKey(value, false, key);
    return key;
}

// Row `order[i]` becomes row `i`; the others are dropped.
template <typename Row>
void Arrange(std::vector<Row>& rows, std::span<const std::uint32_t> order) {
    std::vector<Row> arranged;
    arranged.reserve(order.size());
    for (const std::uint32_t row : order)
        arranged.push_back(std::move(rows[row]));
    rows = std::move(arranged);
}

// Sorted by all columns from left to right, each row once.
template <typename Row>
void SortDistinct(std::vector<Row>& rows) {
    KeySorter keys;
    for (const Row& row : rows)
        keys.Add(KeyOfAll(row.values));
    std::vector<std::uint32_t> order = keys.Order();
    const auto same = [&](std::uint32_t a, std::uint32_t b) { return keys.AreEqual(a, b); };
    order.erase(std::unique(order.begin(), order.end(), same), order.end());
    Arrange(rows, order);
}

// By what each row is sorted by; equal ones stay as they are.
template <typename Row>
void SortByKey(std::vector<Row>& rows) {
    KeySorter keys;
    for (const Row& row : rows)
        keys.Add(row.key);
    Arrange(rows, keys.Order());
}

}  // namespace

// A row of the result with what it is sorted by.
struct Query::Sorted {
    ResultRow values;
    std::string key;
    std::vector<std::pair<std::size_t, Status>> failures;  // by output
};

Table* Query::table() const {
    return row_wise_ ? scope_.sources()[0].table : nullptr;
}

std::optional<std::size_t> Query::TableColumn(std::size_t output) const {
    const Expression& e = *select_.outputs[output].expression;
    if (!IsColumn(e)) return std::nullopt;
    return output_scope_.sources()[0].columns[e.slot];
}

Status Query::AppendOrderKey(EvalContext& context, std::string& key) const {
    for (const OrderItem& order : select_.order_by)
        RETURN_IF_ERROR(AppendKeyOf(*order.expression, order.descending, context, key));
    return Status::Ok();
}

Status Query::AppendOrderKey(RowWalk& walk, std::string& key) const {
    EvalContext context{&session_, &walk.rows(), nullptr};
    StoredFields* const stored = walk.stored_fields();
    for (const OrderItem& order : select_.order_by) {
        const Expression& e = *order.expression;
        const auto narrow = stored != nullptr && IsColumn(e)
                                ? stored->NarrowText(scope_.sources()[0].columns[e.slot])
                                : std::nullopt;
        if (narrow && AppendNarrowSortKey(*narrow, order.descending, key)) continue;
        RETURN_IF_ERROR(walk.ReadInUse());
        RETURN_IF_ERROR(AppendKeyOf(*order.expression, order.descending, context, key));
    }
    return Status::Ok();
}

Result<std::unique_ptr<RowWalk>> Query::Walk() {
    const bool sorted = select_.order_by.empty() || path_.in_order;
    if (!sorted || select_.top) return std::unique_ptr<RowWalk>();
    return RowWalk::Open(scope_, path_, select_.where.get(), session_);
}

Result<std::vector<RowId>> Query::CollectUnsorted() {
    std::vector<RowId> ids;
    ASSIGN_OR_RETURN(const std::unique_ptr<RowWalk> walk,
                     RowWalk::Open(scope_, path_, select_.where.get(), session_));
    for (;;) {
        ASSIGN_OR_RETURN(const std::optional<RowId> row, walk->Next());
        if (!row) break;
        ids.push_back(*row);
    }
    if (select_.top) {
        const auto most = static_cast<std::size_t>(*select_.top);
        ids.resize(select_.top_percent ? (ids.size() * most + 99) / 100
                                       : std::min(ids.size(), most));
    }
    return ids;
}

// Holds the outputs where all of them are columns.
StoredRows Query::StoreOutputs(const StoredFieldReader& reader) const {
    std::vector<std::size_t> columns;
    for (std::size_t output = 0; output < names_.size(); ++output) {
        const auto column = TableColumn(output);
        if (!column) return {};
        columns.push_back(*column);
    }
    return {*session_.database, reader, std::move(columns)};
}

Result<FoundRows> Query::CollectRows() {
    FoundRows found;
    if (select_.order_by.empty() || path_.in_order) {
        ASSIGN_OR_RETURN(found.ids, CollectUnsorted());
        return found;
    }
    std::vector<RowId> ids;
    KeySorter keys;
    std::string key;
    ASSIGN_OR_RETURN(const std::unique_ptr<RowWalk> walk,
                     RowWalk::Open(scope_, path_, select_.where.get(), session_));
    StoredFields* const stored = walk->stored_fields();
    if (stored != nullptr) found.stored = StoreOutputs(stored->reader());
    for (;;) {
        ASSIGN_OR_RETURN(const std::optional<RowId> row, walk->Next());
        if (!row) break;
        ids.push_back(*row);
        key.clear();
        RETURN_IF_ERROR(AppendOrderKey(*walk, key));
        keys.Add(key);
        if (stored != nullptr) RETURN_IF_ERROR(found.stored.Add(*stored));
    }
    const std::vector<std::uint32_t> order = keys.Order();
    found.ids.resize(RowsToKeep(keys, order));
    found.stored.Arrange(std::span(order).first(found.ids.size()));
    for (std::size_t i = 0; i < found.ids.size(); ++i)
        found.ids[i] = ids[order[i]];
    return found;
}

Status Query::ReadRow(RowId row, std::span<const std::size_t> outputs, std::span<Value> values,
                      std::span<Status> failures) {
    std::fill(failures.begin(), failures.end(), Status::Ok());
    const Source& source = output_scope_.sources()[0];
    std::vector<std::size_t> columns;
    bool computed = false;
    for (const std::size_t output : outputs) {
        const auto column = TableColumn(output);
        computed = computed || !column;
        columns.push_back(column.value_or(0));
    }
    if (!computed) return source.table->Read(row, columns, values);
    SourceRows rows(1);
    rows[0].resize(source.columns.size());
    RETURN_IF_ERROR(source.table->Read(row, source.columns, rows[0]));
    EvalContext context{&session_, &rows, nullptr};
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        auto value = OutputValue(*select_.outputs[outputs[i]].expression, context);
        if (!value.ok()) failures[i] = value.status();
        values[i] = std::move(value).value_or(Value::Null());
    }
    return Status::Ok();
}

Result<std::vector<ResultRow>> Query::ReadRows(const FoundRows& found, FieldFailures* failures) {
    std::vector<Status> failed(names_.size());
    std::vector<std::size_t> outputs(names_.size());
    std::iota(outputs.begin(), outputs.end(), std::size_t{0});
    std::vector<ResultRow> rows;
    rows.reserve(found.ids.size());
    for (std::size_t i = 0; i < found.ids.size(); ++i) {
        ResultRow& row = rows.emplace_back(outputs.size());
        if (!found.stored.are_fresh()) {
            RETURN_IF_ERROR(ReadRow(found.ids[i], outputs, row, failed));
            for (const std::size_t output : outputs) {
                if (failed[output].ok()) continue;
                if (failures == nullptr) return failed[output];
                failures->try_emplace({i, output}, failed[output]);
            }
            continue;
        }
        for (const std::size_t output : outputs)
            RETURN_IF_ERROR(found.stored.Read(i, output, row[output]));
    }
    return rows;
}

Status Query::ForEachRow(const TakeRow& take) {
    if (select_.from == nullptr) {
        const SourceRows none;
        EvalContext context{&session_, &none, nullptr};
        ASSIGN_OR_RETURN(const Truth truth, select_.where == nullptr
                                                ? Result<Truth>(Truth::kTrue)
                                                : EvaluateTruth(*select_.where, context));
        return truth == Truth::kTrue ? take(none).status() : Status::Ok();
    }
    if (scope_.sources().size() > 1) return ForEachCombination(take);
    ASSIGN_OR_RETURN(const std::unique_ptr<RowWalk> walk,
                     RowWalk::Open(scope_, path_, select_.where.get(), session_));
    for (;;) {
        ASSIGN_OR_RETURN(const std::optional<RowId> row, walk->Next());
        if (!row) return Status::Ok();
        RETURN_IF_ERROR(walk->ReadInUse());
        ASSIGN_OR_RETURN(const bool more, take(walk->rows()));
        if (!more) return Status::Ok();
    }
}

// A subquery that is run for each row around it keeps what it has read for the whole statement.
Status Query::ForEachCombination(const TakeRow& take) {
    if (joiner_ == nullptr) {
        ASSIGN_OR_RETURN(joiner_,
                         Joiner::Make(*select_.from, scope_, select_.where.get(), session_));
    }
    const Status done =
        joiner_->Run([&](const SourceRows& rows, const CombinedRows&) { return take(rows); });
    if (outer_uses().empty()) joiner_.reset();
    return done;
}

Result<Query::Sorted> Query::MakeRow(EvalContext& context) const {
    Sorted row;
    for (const OutputItem& item : select_.outputs) {
        auto value = OutputValue(*item.expression, context);
        if (!value.ok()) {
            if (!keeps_failures_) return value.status();
            row.failures.emplace_back(row.values.size(), value.status());
        }
        row.values.push_back(std::move(value).value_or(Value::Null()));
    }
    row.key.reserve(32 * select_.order_by.size());
    RETURN_IF_ERROR(AppendOrderKey(context, row.key));
    return row;
}

// Collects the rows of each group and makes one row of each.
class Query::Grouping {
public:
    explicit Grouping(const Query& query) : query_(query) {}

    Result<bool> Add(const SourceRows& rows) {
        EvalContext context{&query_.session_, &rows, nullptr};
        key_.clear();
        for (const ExpressionPtr& expression : query_.select_.group_by)
            RETURN_IF_ERROR(AppendKeyOf(*expression, false, context, key_));
        const auto [found, is_new] = numbers_.try_emplace(key_, groups_.size());
        if (is_new) Open(key_, rows);
        for (Accumulator& accumulator : groups_[found->second].accumulators)
            RETURN_IF_ERROR(accumulator.Add(context));
        return true;
    }

    Result<std::vector<Sorted>> Finish() {
        // Without GROUP BY there is one group, even of no rows.
        if (groups_.empty() && query_.select_.group_by.empty()) Open({}, NullRows());
        std::sort(groups_.begin(), groups_.end(),
                  [](const Group& a, const Group& b) { return a.key < b.key; });
        std::vector<Sorted> rows;
        for (const Group& group : groups_)
            RETURN_IF_ERROR(AddRow(group, rows));
        return rows;
    }

private:
    struct Group {
        std::string key;
        SourceRows first;
        std::vector<Accumulator> accumulators;
    };

    void Open(const std::string& key, const SourceRows& rows) {
        Group group{key, rows, {}};
        for (const Expression* aggregate : query_.aggregates_)
            group.accumulators.emplace_back(*aggregate);
        groups_.push_back(std::move(group));
    }

    SourceRows NullRows() const {
        SourceRows rows;
        for (const Source& source : query_.scope_.sources())
            rows.emplace_back(source.columns.size());
        return rows;
    }

    Status AddRow(const Group& group, std::vector<Sorted>& rows) {
        std::vector<Value> aggregates;
        for (const Accumulator& accumulator : group.accumulators) {
            ASSIGN_OR_RETURN(Value value, accumulator.Result());
            aggregates.push_back(std::move(value));
        }
        EvalContext context{&query_.session_, &group.first, &aggregates};
        if (query_.select_.having != nullptr) {
            ASSIGN_OR_RETURN(const Truth truth, EvaluateTruth(*query_.select_.having, context));
            if (truth != Truth::kTrue) return Status::Ok();
        }
        ASSIGN_OR_RETURN(Sorted row, query_.MakeRow(context));
        rows.push_back(std::move(row));
        return Status::Ok();
    }

    const Query& query_;
    std::unordered_map<std::string, std::size_t> numbers_;
    std::string key_;  // of the row at hand
    std::vector<Group> groups_;
};

Result<std::vector<Query::Sorted>> Query::Produce() {
    if (IsGrouped() || select_.having != nullptr) {
        Grouping grouping(*this);
        RETURN_IF_ERROR(ForEachRow([&](const SourceRows& rows) { return grouping.Add(rows); }));
        return grouping.Finish();
    }
    std::vector<Sorted> made;
    std::unordered_set<std::string> met;
    RETURN_IF_ERROR(ForEachRow([&](const SourceRows& rows) -> Result<bool> {
        EvalContext context{&session_, &rows, nullptr};
        ASSIGN_OR_RETURN(Sorted row, MakeRow(context));
        if (select_.distinct && !met.insert(KeyOfAll(row.values)).second) return true;
        made.push_back(std::move(row));
        return true;
    }));
    return made;
}

void Query::Finish(std::vector<Sorted>& rows) const {
    if (select_.distinct) SortDistinct(rows);
    if (!select_.order_by.empty()) SortByKey(rows);
    CutToTop(rows);
}

// With an order, rows equal to the last one that is let through come along.
void Query::CutToTop(std::vector<Sorted>& rows) const {
    if (!select_.top) return;
    const auto most = static_cast<std::size_t>(*select_.top);
    std::size_t keep = select_.top_percent ? (rows.size() * most + 99) / 100 : most;
    if (keep >= rows.size()) return;
    if (!select_.order_by.empty() && keep > 0)
        while (keep < rows.size() && rows[keep].key == rows[keep - 1].key)
            ++keep;
    rows.resize(keep);
}

// The same for rows that `order` leads to.
std::size_t Query::RowsToKeep(const KeySorter& keys, std::span<const std::uint32_t> order) const {
    if (!select_.top) return order.size();
    const auto most = static_cast<std::size_t>(*select_.top);
    std::size_t keep = select_.top_percent ? (order.size() * most + 99) / 100 : most;
    if (keep >= order.size()) return order.size();
    while (keep > 0 && keep < order.size() && keys.AreEqual(order[keep], order[keep - 1]))
        ++keep;
    return keep;
}

Status Query::RefreshPath() {
    return scope_.outer_uses().empty() ? Status::Ok() : FindPath(true);
}

// Outputs and their order do not matter, nor how many rows there are.
Result<bool> Query::HasRows() {
    RETURN_IF_ERROR(RefreshPath());
    for (const std::unique_ptr<Query>& part : unions_) {
        ASSIGN_OR_RETURN(const bool has_rows, part->HasRows());
        if (has_rows) return true;
    }
    if (!unions_.empty() || (select_.top && *select_.top == 0)) return false;
    if (select_.having != nullptr) {
        ASSIGN_OR_RETURN(const std::vector<Sorted> rows, Produce());
        return !rows.empty();
    }
    // Without GROUP BY there is one group, even of no rows.
    if (IsGrouped() && select_.group_by.empty()) return true;
    bool has_rows = false;
    RETURN_IF_ERROR(ForEachRow([&](const SourceRows&) -> Result<bool> {
        has_rows = true;
        return false;
    }));
    return has_rows;
}

Result<std::vector<ResultRow>> Query::Rows(FieldFailures* failures) {
    RETURN_IF_ERROR(RefreshPath());
    if (!unions_.empty()) return UnionRows();
    std::vector<ResultRow> result;
    if (row_wise_) {
        ASSIGN_OR_RETURN(const FoundRows found, CollectRows());
        return ReadRows(found, failures);
    }
    // What is compared must have a value.
    const bool of_rows = select_.from != nullptr && !IsGrouped() && select_.having == nullptr;
    keeps_failures_ = failures != nullptr && of_rows && !select_.distinct;
    ASSIGN_OR_RETURN(std::vector<Sorted> rows, Produce());
    Finish(rows);
    for (Sorted& row : rows) {
        for (const auto& [output, failure] : row.failures)
            failures->try_emplace({result.size(), output}, failure);
        result.push_back(std::move(row.values));
    }
    return result;
}

// Duplicates go up to the last part that is added without ALL, and are sorted once.
Result<std::vector<ResultRow>> Query::UnionRows() {
    std::size_t distinct = 0;  // so many parts
    for (std::size_t i = 1; i < unions_.size(); ++i)
        if (!select_.unions[i - 1].all) distinct = i + 1;
    std::vector<Sorted> all;
    std::unordered_set<std::string> met;
    for (std::size_t i = 0; i < unions_.size(); ++i) {
        ASSIGN_OR_RETURN(std::vector<ResultRow> rows, unions_[i]->Rows());
        for (ResultRow& row : rows)
            if (i >= distinct || met.insert(KeyOfAll(row)).second)
                all.push_back({std::move(row), {}, {}});
        if (i + 1 == distinct) SortDistinct(all);
    }
    for (Sorted& row : all)
        for (const OrderItem& order : select_.order_by)
            AppendSortKey(row.values[order.expression->slot], order.descending, row.key);
    if (!select_.order_by.empty()) SortByKey(all);
    std::vector<ResultRow> result;
    for (Sorted& row : all)
        result.push_back(std::move(row.values));
    return result;
}

}  // namespace jet::sql
