#include "jet/sql/expressions/subquery.h"

#include "jet/errors.h"

namespace jet::sql {

using base::Result;
using base::Status;

namespace {

// Outer columns refer to the row of `context` while this object exists.
class OuterFrame {
public:
    explicit OuterFrame(EvalContext& context)
        : session_(*context.session), frame_{context.rows, session_.outer} {
        session_.outer = &frame_;
    }
    ~OuterFrame() { session_.outer = frame_.next; }
    OuterFrame(const OuterFrame&) = delete;
    OuterFrame& operator=(const OuterFrame&) = delete;

private:
    Session& session_;
    OuterRows frame_;
};

}  // namespace

Subquery::Subquery(std::unique_ptr<PreparedSelect> query, std::vector<OuterUse> uses)
    : query_(std::move(query)), uses_(std::move(uses)) {}

Result<std::shared_ptr<Subquery>> Subquery::Prepare(const SelectStatement& select, Scope& scope,
                                                    Session& session, bool several) {
    ASSIGN_OR_RETURN(std::unique_ptr<PreparedSelect> query,
                     session.prepare_select(select, session, scope));
    if (!several && query->column_count() != 1)
        return JetError(ErrorNumber::kSubqueryHasSeveralFields);
    std::vector<OuterUse> uses = query->outer_uses();
    return std::shared_ptr<Subquery>(new Subquery(std::move(query), std::move(uses)));
}

Subquery::Moment Subquery::MomentOf(const Session& session) {
    return {session.statement, session.database->changes()};
}

bool Subquery::IsFresh(const Session& session) const {
    return uses_.empty() && loaded_in_ == MomentOf(session);
}

Status Subquery::CountRun(EvalContext& context) {
    return ++context.session->subquery_runs > kMaxSubqueryRuns
               ? JetError(ErrorNumber::kQueryTooComplex)
               : Status::Ok();
}

Status Subquery::Load(EvalContext& context) {
    if (IsFresh(*context.session)) return Status::Ok();
    RETURN_IF_ERROR(CountRun(context));
    loaded_in_.reset();
    const OuterFrame frame(context);
    ASSIGN_OR_RETURN(std::vector<ResultRow> rows, query_->Rows());
    values_.clear();
    for (ResultRow& row : rows)
        values_.push_back(std::move(row[0]));
    set_ = uses_.empty() ? ValueSet::Make(values_) : nullptr;
    loaded_in_ = MomentOf(*context.session);
    return Status::Ok();
}

Result<const std::vector<Value>*> Subquery::Values(EvalContext& context) {
    RETURN_IF_ERROR(Load(context));
    return &values_;
}

Result<Value> Subquery::OnlyValue(EvalContext& context) {
    RETURN_IF_ERROR(Load(context));
    if (values_.size() > 1) return JetError(ErrorNumber::kSubqueryHasSeveralRecords);
    return values_.empty() ? Value::Null() : values_[0];
}

Result<bool> Subquery::HasRows(EvalContext& context) {
    const bool fresh = uses_.empty() && looked_in_ == MomentOf(*context.session);
    if (fresh) return has_rows_;
    RETURN_IF_ERROR(CountRun(context));
    const OuterFrame frame(context);
    ASSIGN_OR_RETURN(has_rows_, query_->HasRows());
    looked_in_ = MomentOf(*context.session);
    return has_rows_;
}

Result<Truth> Subquery::Contains(const Value& value, EvalContext& context) {
    RETURN_IF_ERROR(Load(context));
    if (value.is_null()) return values_.empty() ? Truth::kFalse : Truth::kNull;
    const auto found = set_ != nullptr ? set_->Contains(value) : std::nullopt;
    if (found) return *found;
    return CompareWithEach(value, Operator::kEqual, false, context);
}

Result<Truth> Subquery::CompareWithEach(const Value& value, Operator op, bool all,
                                        EvalContext& context) {
    RETURN_IF_ERROR(Load(context));
    const Truth decided = ToTruth(!all);
    Truth truth = ToTruth(all);
    for (const Value& other : values_) {
        ASSIGN_OR_RETURN(const Truth holds, CompareWith(op, value, other));
        if (holds == decided) return decided;
        if (holds == Truth::kNull) truth = holds;
    }
    return truth;
}

Result<Value> EvaluateSubquery(const Expression& e, EvalContext& context) {
    if (e.kind == NodeKind::kScalarQuery) return e.subquery->OnlyValue(context);
    ASSIGN_OR_RETURN(const Truth truth, SubqueryTruth(e, context));
    return TruthValue(truth);
}

Result<Truth> SubqueryTruth(const Expression& e, EvalContext& context) {
    if (e.kind == NodeKind::kExists) {
        ASSIGN_OR_RETURN(const bool has_rows, e.subquery->HasRows(context));
        return ToTruth(has_rows);
    }
    ASSIGN_OR_RETURN(const Value value, Evaluate(*e.children[0], context));
    if (e.kind == NodeKind::kComparedQuery)
        return e.subquery->CompareWithEach(value, e.operators[0], e.all, context);
    ASSIGN_OR_RETURN(const Truth truth, e.subquery->Contains(value, context));
    return e.negated ? Not(truth) : truth;
}

}  // namespace jet::sql
