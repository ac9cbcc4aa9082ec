#include "jet/sql/plans/column_bounds.h"

#include "jet/sql/expressions/evaluate.h"
#include "jet/sql/expressions/subquery.h"
#include "jet/sql/functions/functions.h"
#include "jet/sql/functions/operators.h"
#include "jet/sql/plans/interval_of.h"

#include <algorithm>

namespace jet::sql {
namespace {

// So many choices are always worth as many searches; more are while they are fewer than half of the
// rows, since beyond that a scan of all of them is no slower.
constexpr std::size_t kFewIntervals = 2000;

using Facts = std::vector<ColumnBounds>;

// A list in braces would copy it.
Facts Fact(ColumnBounds bounds) {
    Facts facts;
    facts.push_back(std::move(bounds));
    return facts;
}

const ColumnBounds* Find(const Facts& facts, std::size_t column) {
    for (const ColumnBounds& known : facts)
        if (known.column == column) return &known;
    return nullptr;
}

// What helps more when two facts about a column cannot be joined.
int Worth(const ColumnBounds& bounds) {
    if (bounds.exact) return 3;
    return bounds.intervals.size() == 1 ? 1 : 2;
}

void JoinByAnd(ColumnBounds& known, ColumnBounds more) {
    const bool ranges = Worth(known) == 1 && Worth(more) == 1;
    if (ranges)
        known.intervals[0] = Intersection(known.intervals[0], more.intervals[0]);
    else if (Worth(more) > Worth(known))
        known = std::move(more);
}

class BoundsFinder {
public:
    BoundsFinder(const Source& source, Session& session, bool outer_known)
        : source_(source), context_{&session, nullptr, nullptr}, outer_known_(outer_known) {}

    Facts Study(const Expression& e) {
        switch (e.kind) {
        case NodeKind::kChain:
            return StudyChain(e);
        case NodeKind::kBetween:
            return e.negated ? Facts() : StudyBetween(e);
        case NodeKind::kIn:
            return e.negated ? Facts() : StudyIn(e);
        case NodeKind::kInQuery:
            return e.negated ? Facts() : StudyInQuery(e);
        case NodeKind::kIsNull:
            return e.negated ? Facts() : StudyIsNull(e);
        case NodeKind::kColumn:
            return StudyTruth(e, true);
        case NodeKind::kNot:
            return StudyTruth(*e.children[0], false);
        default:
            return {};
        }
    }

private:
    Facts StudyChain(const Expression& e) {
        const auto all = [&](Operator op) {
            return std::all_of(e.operators.begin(), e.operators.end(),
                               [op](Operator other) { return other == op; });
        };
        if (all(Operator::kAnd)) return StudyAnd(e);
        if (all(Operator::kOr)) return StudyOr(e);
        if (e.operators.size() != 1) return {};
        if (e.operators[0] == Operator::kLike) return StudyLike(e);
        Facts facts = Compared(*e.children[0], e.operators[0], *e.children[1]);
        return facts.empty() ? Compared(*e.children[1], Mirrored(e.operators[0]), *e.children[0])
                             : facts;
    }

    Facts StudyAnd(const Expression& e) {
        Facts facts;
        for (const ExpressionPtr& child : e.children)
            AddByAnd(facts, Study(*child));
        return facts;
    }

    static void AddByAnd(Facts& facts, Facts more) {
        for (ColumnBounds& bounds : more) {
            const auto known =
                std::find_if(facts.begin(), facts.end(), [&](const ColumnBounds& other) {
                    return other.column == bounds.column;
                });
            if (known == facts.end())
                facts.push_back(std::move(bounds));
            else
                JoinByAnd(*known, std::move(bounds));
        }
    }

    // What each of the conditions says about the same column.
    Facts StudyOr(const Expression& e) {
        Facts facts = Study(*e.children[0]);
        for (std::size_t i = 1; i < e.children.size() && !facts.empty(); ++i) {
            const Facts more = Study(*e.children[i]);
            std::erase_if(facts, [&](const ColumnBounds& known) {
                return Find(more, known.column) == nullptr;
            });
            for (ColumnBounds& known : facts) {
                const ColumnBounds& other = *Find(more, known.column);
                known.intervals.insert(known.intervals.end(), other.intervals.begin(),
                                       other.intervals.end());
                known.exact = false;
                known.null = known.null || other.null;
            }
            std::erase_if(facts, [this](const ColumnBounds& known) {
                return known.intervals.size() > MostIntervals();
            });
        }
        for (ColumnBounds& known : facts)
            if (e.children.size() > 1) SortIntervals(known.intervals);
        return facts;
    }

    Facts StudyBetween(const Expression& e) {
        Facts facts = Compared(*e.children[0], Operator::kGreaterEqual, *e.children[1]);
        AddByAnd(facts, Compared(*e.children[0], Operator::kLessEqual, *e.children[2]));
        return facts;
    }

    Facts StudyIn(const Expression& e) {
        if (!IsColumn(*e.children[0]) || e.children.size() > MostIntervals()) return {};
        ColumnBounds bounds{PositionOf(*e.children[0]), {}, false};
        for (std::size_t i = 1; i < e.children.size(); ++i) {
            const auto constant = Constant(*e.children[i]);
            if (!constant) return {};
            if (constant->is_null()) continue;  // equal to nothing
            auto equal = ValuesEqualTo(DesignOf(bounds.column), *constant);
            if (!equal) return {};
            bounds.intervals.push_back(std::move(equal->interval));
            bounds.exact = equal->exact && e.children.size() == 2;
        }
        SortIntervals(bounds.intervals);
        return Fact(std::move(bounds));
    }

    Facts StudyInQuery(const Expression& e) {
        if (!IsColumn(*e.children[0])) return {};
        for (std::size_t i = 1; i < e.children.size(); ++i)
            if (!IsConstant(*e.children[i])) return {};
        const auto values = e.subquery->Values(context_);
        if (!values.ok() || (*values)->size() > MostIntervals()) return {};
        ColumnBounds bounds{PositionOf(*e.children[0]), {}};
        for (const Value& value : **values) {
            if (value.is_null()) continue;
            auto equal = ValuesEqualTo(DesignOf(bounds.column), value);
            if (!equal) return {};
            bounds.intervals.push_back(std::move(equal->interval));
        }
        SortIntervals(bounds.intervals);
        return Fact(std::move(bounds));
    }

    Facts StudyIsNull(const Expression& e) {
        if (!IsColumn(*e.children[0])) return {};
        ColumnBounds bounds{PositionOf(*e.children[0]), {}, true};
        if (DesignOf(bounds.column).type == ColumnType::kBoolean) return {};
        const IntervalEnd null{Value::Null()};
        bounds.intervals.push_back({null, null});
        bounds.null = true;
        return Fact(std::move(bounds));
    }

    // A column of truths alone, or denied.
    Facts StudyTruth(const Expression& e, bool truth) {
        if (!IsColumn(e)) return {};
        ColumnBounds bounds{PositionOf(e), {}, true};
        if (DesignOf(bounds.column).type != ColumnType::kBoolean) return {};
        const IntervalEnd end{Value::Boolean(truth)};
        bounds.intervals.push_back({end, end});
        return Fact(std::move(bounds));
    }

    Facts StudyLike(const Expression& e) {
        if (!IsColumn(*e.children[0])) return {};
        ColumnBounds bounds{PositionOf(*e.children[0]), {}, false};
        const ColumnType type = DesignOf(bounds.column).type;
        const auto pattern = Constant(*e.children[1]);
        if ((type != ColumnType::kText && type != ColumnType::kMemo) || !pattern ||
            !pattern->is<std::u16string>())
            return {};
        const std::u16string prefix = PrefixOfPattern(pattern->as<std::u16string>());
        if (prefix.empty()) return {};
        const IntervalEnd end{Value::Text(prefix), true};
        bounds.intervals.push_back({end, end});
        return Fact(std::move(bounds));
    }

    Facts Compared(const Expression& column, Operator op, const Expression& other) {
        const bool low = op == Operator::kGreater || op == Operator::kGreaterEqual;
        const bool high = op == Operator::kLess || op == Operator::kLessEqual;
        const bool equal = op == Operator::kEqual;
        if ((!low && !high && !equal) || !IsColumn(column)) return {};
        const auto constant = Constant(other);
        if (!constant || constant->is_null()) return {};
        ColumnBounds bounds{PositionOf(column), {}, false};
        auto values = ValuesEqualTo(DesignOf(bounds.column), *constant);
        if (!values) return {};
        if (low) values->interval.high.reset();
        if (high) values->interval.low.reset();
        bounds.exact = equal && values->exact;
        bounds.intervals.push_back(std::move(values->interval));
        return Fact(std::move(bounds));
    }

    // An expression that cannot be computed fails when the condition is tested, if it comes to
    // that.
    std::optional<Value> Constant(const Expression& e) {
        if (!IsConstant(e)) return std::nullopt;
        auto value = Evaluate(e, context_);
        if (!value.ok()) return std::nullopt;
        return std::move(value).value();
    }

    bool IsConstant(const Expression& e) const {
        if (e.kind == NodeKind::kColumn || e.kind == NodeKind::kAggregate ||
            e.kind == NodeKind::kName || (e.kind == NodeKind::kOuter && !outer_known_))
            return false;
        if (e.kind == NodeKind::kCall && e.function->kind == FunctionKind::kChanging) return false;
        return std::all_of(e.children.begin(), e.children.end(),
                           [this](const ExpressionPtr& child) { return IsConstant(*child); });
    }

    std::size_t MostIntervals() const {
        return std::max<std::size_t>(kFewIntervals, source_.table->row_count() / 2);
    }

    std::size_t PositionOf(const Expression& column) const { return source_.columns[column.slot]; }
    const ColumnDesign& DesignOf(std::size_t position) const {
        return source_.table->design().columns[position];
    }

    const Source& source_;
    EvalContext context_;
    bool outer_known_;
};

}  // namespace

std::vector<ColumnBounds> FindBounds(const Expression& where, const Source& source,
                                     Session& session, bool outer_known) {
    return BoundsFinder(source, session, outer_known).Study(where);
}

}  // namespace jet::sql
