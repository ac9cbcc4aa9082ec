#include "jet/sql/statements/rule_maker.h"

#include "base/unicode.h"
#include "jet/errors.h"
#include "jet/sql/expressions/bind.h"
#include "jet/sql/expressions/evaluate.h"
#include "jet/sql/syntax/parser.h"

#include <algorithm>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

struct Rule {
    ExpressionPtr condition;
    std::vector<bool> reads;  // one per column of the table
    bool of_table = false;
    Status broken;  // what is said then
};

class CompiledRules final : public RowRules {
public:
    CompiledRules(std::function<double()> clock, std::size_t columns) : used_(columns) {
        session_.clock = std::move(clock);
    }

    void Add(Rule rule) {
        for (std::size_t i = 0; i < used_.size(); ++i)
            used_[i] = used_[i] || rule.reads[i];
        rules_.push_back(std::move(rule));
    }
    void Finish() {
        for (std::size_t i = 0; i < used_.size(); ++i)
            if (used_[i]) columns_.push_back(i);
    }

    const std::vector<std::size_t>& columns() const override { return columns_; }

    Status Check(std::span<const Value> values, const std::vector<bool>& changed) const override {
        const SourceRows rows{std::vector<Value>(values.begin(), values.end())};
        Session session = session_;
        session.StartStatement();
        EvalContext context{&session, &rows, nullptr};
        for (const Rule& rule : rules_) {
            if (!rule.of_table && !Touches(rule, changed)) continue;
            ASSIGN_OR_RETURN(const Truth truth, EvaluateTruth(*rule.condition, context));
            // A rule that gives Null is satisfied.
            if (truth == Truth::kFalse) return rule.broken;
        }
        return Status::Ok();
    }

private:
    static bool Touches(const Rule& rule, const std::vector<bool>& changed) {
        for (std::size_t i = 0; i < changed.size(); ++i)
            if (changed[i] && rule.reads[i]) return true;
        return false;
    }

    Session session_;
    std::vector<Rule> rules_;
    std::vector<bool> used_;
    std::vector<std::size_t> columns_;
};

// Names become columns: the slot of a column is its position in the design.
Status FindColumns(Expression& e, const TableDesign& design, std::vector<bool>& reads) {
    for (const ExpressionPtr& child : e.children)
        RETURN_IF_ERROR(FindColumns(*child, design, reads));
    if (e.kind != NodeKind::kName) return Status::Ok();
    const std::size_t column = FindColumn(design, e.name);
    if (column == design.columns.size() ||
        (!e.qualifier.empty() && !SameName(e.qualifier, design.name)))
        return JetError(ErrorNumber::kNoSuchFieldInRule, e.name);
    e.kind = NodeKind::kColumn;
    e.source = 0;
    e.slot = column;
    reads[column] = true;
    return Status::Ok();
}

Result<Rule> MakeRule(const TableDesign& design, const std::u16string& text,
                      const std::u16string& column, const std::function<double()>& clock) {
    Session session;
    session.clock = clock;
    session.StartStatement();
    Rule rule;
    rule.of_table = column.empty();
    rule.reads.resize(design.columns.size());
    ASSIGN_OR_RETURN(rule.condition, ParseRule(text, column, session.current_year()));
    RETURN_IF_ERROR(FindColumns(*rule.condition, design, rule.reads));
    if (!column.empty()) rule.reads[FindColumn(design, column)] = true;
    Scope none;
    RETURN_IF_ERROR(Bind(*rule.condition, none, session));
    return rule;
}

Status NotUnderstood(const std::u16string& text, const std::u16string& whose, const Status& why) {
    return {base::StatusCode::kUnsupported, "The validation rule '" + base::ToUtf8(text) +
                                                "' set for '" + base::ToUtf8(whose) +
                                                "' is not understood: " + why.message()};
}

// The design's own text replaces the engine's.
Status Broken(const std::u16string& text, const std::u16string& whose,
              const std::optional<std::u16string>& message) {
    Status broken = JetError(ErrorNumber::kRuleBroken, text, whose);
    if (!message) return broken;
    return {broken.code(), base::ToUtf8(*message), broken.number()};
}

}  // namespace

Result<std::unique_ptr<RowRules>> RuleMaker::Make(const TableDesign& design) const {
    if (!HasRules(design)) return std::unique_ptr<RowRules>();
    auto rules = std::make_unique<CompiledRules>(clock_, design.columns.size());
    const auto add = [&](const std::optional<std::u16string>& text,
                         const std::optional<std::u16string>& message,
                         const std::u16string& column) -> Status {
        if (!text) return Status::Ok();
        const std::u16string whose = column.empty() ? design.name : design.name + u"." + column;
        auto rule = MakeRule(design, *text, column, clock_);
        if (!rule.ok()) return NotUnderstood(*text, whose, rule.status());
        rule->broken = Broken(*text, whose, message);
        rules->Add(std::move(rule).value());
        return Status::Ok();
    };
    for (const ColumnDesign& column : design.columns)
        RETURN_IF_ERROR(add(column.validation_rule, column.validation_text, column.name));
    RETURN_IF_ERROR(add(design.validation_rule, design.validation_text, {}));
    rules->Finish();
    return std::unique_ptr<RowRules>(std::move(rules));
}

}  // namespace jet::sql
