#include "jet/sql/access_path.h"

#include "jet/coerce.h"
#include "jet/value_number.h"

#include <algorithm>
#include <cmath>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

// What the condition says about one column: bounds that its value must lie in, both included.
struct ColumnBounds {
    std::size_t column = 0;  // position in the design
    std::optional<Value> low;
    std::optional<Value> high;
    bool equal = false;  // low and high come from one equality
};

bool IsConstant(const Expression& e) {
    if (e.kind == NodeKind::kColumn || e.kind == NodeKind::kAggregate || e.kind == NodeKind::kName)
        return false;
    return std::all_of(e.children.begin(), e.children.end(),
                       [](const ExpressionPtr& child) { return IsConstant(*child); });
}

// `a op b` as seen from b.
Operator Mirrored(Operator op) {
    switch (op) {
    case Operator::kLess:
        return Operator::kGreater;
    case Operator::kLessEqual:
        return Operator::kGreaterEqual;
    case Operator::kGreater:
        return Operator::kLess;
    case Operator::kGreaterEqual:
        return Operator::kLessEqual;
    default:
        return op;
    }
}

enum class Side : std::uint8_t { kLow, kHigh };

bool IsWholeType(ColumnType type) {
    return type == ColumnType::kByte || type == ColumnType::kShort || type == ColumnType::kLong;
}

// The bound as a value of the column's type, moved outwards where it lies between two of them.
// nullopt: the column's index does not help.
std::optional<Value> BoundFor(const ColumnDesign& column, const Value& value, Side side) {
    const bool text_column = column.type == ColumnType::kText || column.type == ColumnType::kMemo;
    if (text_column) return value.is<std::u16string>() ? std::optional<Value>(value) : std::nullopt;
    if (value.is<std::u16string>() || value.is<Bytes>() || value.is<Guid>()) return std::nullopt;
    const auto number = NumberOf(value);
    if (!number) return std::nullopt;
    double bound = *number;
    if (IsWholeType(column.type)) {
        bound = side == Side::kLow ? std::floor(bound) : std::ceil(bound);
    } else if (column.type == ColumnType::kDate) {
        constexpr double kSecond = 1.0 / 86400;  // dates are compared to the second
        bound += side == Side::kLow ? -kSecond : kSecond;
        if (bound < 1 && bound > -1)
            return std::nullopt;  // around day 0 the order of keys is another
    } else if (column.type != ColumnType::kDouble && column.type != ColumnType::kMoney) {
        return std::nullopt;
    }
    if (column.type == ColumnType::kMoney && !value.is<Money>())
        bound += side == Side::kLow ? -1e-4 : 1e-4;
    ColumnDesign target = column;
    const Value unrounded = value.is<Money>() ? value : Value::Double(bound);
    auto coerced = Coerce(unrounded, target);
    if (!coerced.ok()) return std::nullopt;
    return std::move(coerced).value();
}

// Before day 0 a later time of day makes a smaller number, so that the order of dates is not that
// of their keys.
bool IsSafeDate(const ColumnDesign& column, const std::optional<Value>& bound) {
    return column.type != ColumnType::kDate || !bound || bound->as<Date>().days > 0;
}

class BoundsFinder {
public:
    BoundsFinder(const Source& source, Session& session)
        : source_(source), context_{&session, nullptr, nullptr} {}

    Status Study(const Expression& where) {
        if (where.kind == NodeKind::kBetween && !where.negated) {
            RETURN_IF_ERROR(Note(*where.children[0], Operator::kGreaterEqual, *where.children[1]));
            return Note(*where.children[0], Operator::kLessEqual, *where.children[2]);
        }
        if (where.kind != NodeKind::kChain) return Status::Ok();
        const bool all_and = std::all_of(where.operators.begin(), where.operators.end(),
                                         [](Operator op) { return op == Operator::kAnd; });
        if (all_and) {
            for (const ExpressionPtr& child : where.children)
                RETURN_IF_ERROR(Study(*child));
            return Status::Ok();
        }
        if (where.operators.size() != 1) return Status::Ok();
        const Operator op = where.operators[0];
        RETURN_IF_ERROR(Note(*where.children[0], op, *where.children[1]));
        return Note(*where.children[1], Mirrored(op), *where.children[0]);
    }

    const ColumnBounds* Find(std::size_t column) const {
        for (const ColumnBounds& bounds : found_)
            if (bounds.column == column) return &bounds;
        return nullptr;
    }

private:
    Status Note(const Expression& column, Operator op, const Expression& constant) {
        const bool low = op == Operator::kGreater || op == Operator::kGreaterEqual;
        const bool high = op == Operator::kLess || op == Operator::kLessEqual;
        const bool equal = op == Operator::kEqual;
        if ((!low && !high && !equal) || !IsColumn(column) || !IsConstant(constant))
            return Status::Ok();
        // An expression that cannot be computed fails when the condition is tested, if it comes to
        // that.
        const auto value = Evaluate(constant, context_);
        if (!value.ok() || value->is_null()) return Status::Ok();
        const std::size_t position = source_.columns[column.slot];
        const ColumnDesign& design = source_.table->design().columns[position];
        auto low_bound = BoundFor(design, *value, Side::kLow);
        auto high_bound = BoundFor(design, *value, Side::kHigh);
        if (!low_bound || !high_bound) return Status::Ok();
        ColumnBounds& bounds = At(position);
        // The first bound of a kind stays; the condition itself is tested for the others.
        if (equal && !bounds.equal) {
            bounds.equal = true;
            bounds.low = std::move(low_bound);
            bounds.high = std::move(high_bound);
        }
        if (low && !bounds.low && IsSafeDate(design, low_bound)) bounds.low = std::move(low_bound);
        if (high && !bounds.high && IsSafeDate(design, high_bound))
            bounds.high = std::move(high_bound);
        return Status::Ok();
    }

    ColumnBounds& At(std::size_t column) {
        for (ColumnBounds& bounds : found_)
            if (bounds.column == column) return bounds;
        found_.push_back({column, {}, {}, false});
        return found_.back();
    }

    const Source& source_;
    EvalContext context_;
    std::vector<ColumnBounds> found_;
};

bool IsText(ColumnType type) {
    return type == ColumnType::kText || type == ColumnType::kMemo;
}

// Jet 3 files sort texts by another table than expressions do.
bool SortsAlike(const ColumnDesign& column, int jet_version) {
    return !IsText(column.type) || jet_version >= 4;
}

struct Candidate {
    AccessPath path;
    int score = 0;
};

Candidate Rate(const TableDesign& design, std::size_t number, const BoundsFinder& bounds,
               int jet_version) {
    const IndexDesign& index = design.indexes[number];
    Candidate candidate;
    candidate.path.index = number;
    std::size_t equalities = 0;
    for (const IndexColumn& part : index.columns) {
        const ColumnBounds* known = bounds.Find(part.column);
        if (known == nullptr) break;
        const ColumnDesign& column = design.columns[part.column];
        const bool exact = known->equal && known->low == known->high;
        if (!exact && !SortsAlike(column, jet_version)) break;
        const std::optional<Value>& first = part.ascending ? known->low : known->high;
        const std::optional<Value>& last = part.ascending ? known->high : known->low;
        if (first) candidate.path.from.values.push_back(*first);
        if (last) candidate.path.to.values.push_back(*last);
        candidate.score += exact ? 10 : first && last ? 6 : 3;
        if (!exact) break;
        ++equalities;
    }
    if (equalities == index.columns.size() && (index.unique || index.primary))
        candidate.score += 100;
    return candidate;
}

// True when the index, from `skip` columns on, sorts as asked; `backwards` says in which direction
// to walk.
bool Orders(const TableDesign& design, const IndexDesign& index, const Source& source,
            const std::vector<OrderItem>& order, int jet_version, bool& backwards) {
    if (order.empty() || order.size() > index.columns.size()) return false;
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (!IsColumn(*order[i].expression)) return false;
        const IndexColumn& part = index.columns[i];
        const ColumnDesign& column = design.columns[part.column];
        if (source.columns[order[i].expression->slot] != part.column) return false;
        if (!SortsAlike(column, jet_version)) return false;
        if (column.type == ColumnType::kNumeric || column.type == ColumnType::kDate) return false;
        const bool against = order[i].descending == part.ascending;
        if (i > 0 && against != backwards) return false;
        backwards = against;
    }
    return true;
}

}  // namespace

Result<AccessPath> ChoosePath(const Scope& scope, const Expression* where,
                              const std::vector<OrderItem>& order, Session& session) {
    const Source& source = scope.sources()[0];
    const TableDesign& design = source.table->design();
    const int version = session.database->jet_version();
    BoundsFinder bounds(source, session);
    if (where != nullptr) RETURN_IF_ERROR(bounds.Study(*where));
    Candidate best;
    for (std::size_t i = 0; i < design.indexes.size(); ++i) {
        const IndexDesign& index = design.indexes[i];
        if (!index.maintainable) continue;
        Candidate candidate = Rate(design, i, bounds, version);
        bool backwards = false;
        const bool ordered = Orders(design, index, source, order, version, backwards);
        const bool narrowed = candidate.score > 0;
        // Rows without a key would be missed by a walk of the whole index.
        if (!narrowed && (!ordered || index.ignore_nulls || where != nullptr)) continue;
        candidate.path.in_order = ordered;
        candidate.path.backwards = ordered && backwards;
        if (ordered) candidate.score += 1;
        if (candidate.score > best.score) best = std::move(candidate);
    }
    return std::move(best.path);
}

}  // namespace jet::sql
