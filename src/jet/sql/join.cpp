#include "jet/sql/join.h"

#include "jet/errors.h"
#include "jet/sql/sort_key.h"

#include <algorithm>
#include <limits>
#include <string>
#include <unordered_map>
#include <vector>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

constexpr std::uint32_t kNoRow = std::numeric_limits<std::uint32_t>::max();
// Combinations held at a time; more are refused (3360) before they take the machine's memory.
constexpr std::size_t kMostCombinations = 20'000'000;

// One row number per source; kNoRow where the source has no part (yet), or no partner was found.
using Combination = std::vector<std::uint32_t>;

// The two sides of an equality that links the left to the right.
struct Link {
    const Expression* left = nullptr;
    const Expression* right = nullptr;
};

void MarkSources(const FromNode& node, std::vector<bool>& marks) {
    if (node.left == nullptr) {
        marks[node.source] = true;
        return;
    }
    MarkSources(*node.left, marks);
    MarkSources(*node.right, marks);
}

// True when the expression names sources, all of them marked.
bool UsesOnly(const Expression& e, const std::vector<bool>& marks, bool& any) {
    if (e.kind == NodeKind::kColumn) {
        any = true;
        return marks[e.source];
    }
    return std::all_of(e.children.begin(), e.children.end(),
                       [&](const ExpressionPtr& child) { return UsesOnly(*child, marks, any); });
}

bool Inside(const Expression& e, const std::vector<bool>& marks) {
    bool any = false;
    return UsesOnly(e, marks, any) && any;
}

class Joiner {
public:
    Joiner(const Scope& scope, const Expression* where, Session& session)
        : scope_(scope), where_(where), tables_(scope.sources().size()),
          ids_(scope.sources().size()),
          rows_(scope.sources().size()), context_{&session, &rows_, nullptr} {}

    Status Run(const FromNode& from,
               const std::function<Status(const SourceRows&, const CombinedRows&)>& take) {
        for (std::size_t i = 0; i < tables_.size(); ++i)
            RETURN_IF_ERROR(Load(i));
        ASSIGN_OR_RETURN(const std::vector<Combination> all, Join(from));
        for (const Combination& combination : all) {
            Show(combination);
            RETURN_IF_ERROR(take(rows_, RowsOf(combination)));
        }
        return Status::Ok();
    }

private:
    Status Load(std::size_t number) {
        const Source& source = scope_.sources()[number];
        ASSIGN_OR_RETURN(const std::unique_ptr<RowCursor> cursor, source.table->Scan());
        for (;;) {
            ASSIGN_OR_RETURN(const std::optional<RowId> row, cursor->Next());
            if (!row) return Status::Ok();
            std::vector<Value> values(source.columns.size());
            RETURN_IF_ERROR(cursor->Read(source.columns, values));
            tables_[number].push_back(std::move(values));
            ids_[number].push_back(*row);
            if (tables_[number].size() > kMostCombinations) return JetError(3360);
        }
    }

    const CombinedRows& RowsOf(const Combination& combination) {
        found_.assign(combination.size(), std::nullopt);
        for (std::size_t i = 0; i < combination.size(); ++i)
            if (combination[i] != kNoRow) found_[i] = ids_[i][combination[i]];
        return found_;
    }

    void Show(const Combination& combination) {
        for (std::size_t i = 0; i < combination.size(); ++i)
            ShowSource(i, combination[i]);
    }

    void ShowSource(std::size_t i, std::uint32_t row) {
        if (row == kNoRow)
            rows_[i].assign(scope_.sources()[i].columns.size(), Value::Null());
        else
            rows_[i] = tables_[i][row];
    }

    Result<std::vector<Combination>> Join(const FromNode& node) {
        std::vector<Combination> result;
        if (node.left == nullptr) {
            for (std::uint32_t row = 0; row < tables_[node.source].size(); ++row) {
                Combination combination(tables_.size(), kNoRow);
                combination[node.source] = row;
                result.push_back(std::move(combination));
            }
            return result;
        }
        const bool right_join = node.kind == JoinKind::kRight;
        const FromNode& outer = right_join ? *node.right : *node.left;
        const FromNode& inner = right_join ? *node.left : *node.right;
        ASSIGN_OR_RETURN(const std::vector<Combination> outer_rows, Join(outer));
        ASSIGN_OR_RETURN(const std::vector<Combination> inner_rows, Join(inner));
        RETURN_IF_ERROR(Combine(node, outer, inner, outer_rows, inner_rows, result));
        return result;
    }

    Status Combine(const FromNode& node, const FromNode& outer, const FromNode& inner,
                   const std::vector<Combination>& outer_rows,
                   const std::vector<Combination>& inner_rows, std::vector<Combination>& result) {
        std::vector<Link> links;
        const Expression* condition = node.on != nullptr ? node.on.get() : where_;
        if (condition != nullptr) FindLinks(*condition, outer, inner, links);
        std::unordered_map<std::string, std::vector<std::uint32_t>> partners;
        std::vector<std::uint32_t> everyone;
        for (std::uint32_t i = 0; i < inner_rows.size(); ++i) {
            if (links.empty()) {
                everyone.push_back(i);
                continue;
            }
            Show(inner_rows[i]);
            ASSIGN_OR_RETURN(const std::optional<std::string> key, KeyOf(links, false));
            if (key) partners[*key].push_back(i);
        }
        const std::vector<std::uint32_t> nobody;
        for (const Combination& row : outer_rows) {
            const std::vector<std::uint32_t>* candidates = &everyone;
            if (!links.empty()) {
                Show(row);
                ASSIGN_OR_RETURN(const std::optional<std::string> key, KeyOf(links, true));
                const auto found = key ? partners.find(*key) : partners.end();
                candidates = found == partners.end() ? &nobody : &found->second;
            }
            RETURN_IF_ERROR(Match(node, row, inner_rows, *candidates, result));
        }
        return Status::Ok();
    }

    Status Match(const FromNode& node, const Combination& row,
                 const std::vector<Combination>& inner_rows,
                 const std::vector<std::uint32_t>& candidates, std::vector<Combination>& result) {
        bool matched = false;
        for (const std::uint32_t candidate : candidates) {
            Combination both = row;
            for (std::size_t i = 0; i < both.size(); ++i)
                if (inner_rows[candidate][i] != kNoRow) both[i] = inner_rows[candidate][i];
            if (node.on != nullptr) {
                Show(both);
                ASSIGN_OR_RETURN(const Truth truth, EvaluateTruth(*node.on, context_));
                if (truth != Truth::kTrue) continue;
            }
            matched = true;
            result.push_back(std::move(both));
            if (result.size() > kMostCombinations) return JetError(3360);
        }
        if (!matched && node.kind != JoinKind::kInner) result.push_back(row);
        return Status::Ok();
    }

    // Equalities among the AND-ed conditions with one side in each part.
    void FindLinks(const Expression& e, const FromNode& outer, const FromNode& inner,
                   std::vector<Link>& links) const {
        if (e.kind != NodeKind::kChain) return;
        if (std::all_of(e.operators.begin(), e.operators.end(),
                        [](Operator op) { return op == Operator::kAnd; })) {
            for (const ExpressionPtr& child : e.children)
                FindLinks(*child, outer, inner, links);
            return;
        }
        if (e.operators.size() != 1 || e.operators[0] != Operator::kEqual) return;
        if (!IsColumn(*e.children[0]) || !IsColumn(*e.children[1])) return;
        if (!SameFamily(*e.children[0], *e.children[1])) return;
        std::vector<bool> outer_marks(tables_.size());
        std::vector<bool> inner_marks(tables_.size());
        MarkSources(outer, outer_marks);
        MarkSources(inner, inner_marks);
        for (const std::size_t first : {std::size_t{0}, std::size_t{1}}) {
            const Expression& left = *e.children[first];
            const Expression& right = *e.children[1 - first];
            if (Inside(left, outer_marks) && Inside(right, inner_marks))
                links.push_back({&left, &right});
        }
    }

    // Only values of one kind have keys that tell whether they are equal.
    bool SameFamily(const Expression& a, const Expression& b) const {
        return Family(a) == Family(b);
    }

    int Family(const Expression& column) const {
        const Source& source = scope_.sources()[column.source];
        switch (source.table->design().columns[source.columns[column.slot]].type) {
        case ColumnType::kText:
        case ColumnType::kMemo:
            return 1;
        case ColumnType::kBinary:
        case ColumnType::kFixedBinary:
        case ColumnType::kOle:
            return 2;
        case ColumnType::kGuid:
            return 3;
        case ColumnType::kDate:
            return 4;
        default:
            return 0;
        }
    }

    // nullopt: a Null, which has no partner.
    Result<std::optional<std::string>> KeyOf(const std::vector<Link>& links, bool outer) {
        std::string key;
        for (const Link& link : links) {
            ASSIGN_OR_RETURN(const Value value,
                             Evaluate(outer ? *link.left : *link.right, context_));
            if (value.is_null()) return std::optional<std::string>();
            AppendSortKey(value, false, key);
        }
        return std::optional<std::string>(std::move(key));
    }

    const Scope& scope_;
    const Expression* where_;
    std::vector<std::vector<std::vector<Value>>> tables_;
    std::vector<std::vector<RowId>> ids_;  // of the rows of tables_
    SourceRows rows_;
    CombinedRows found_;
    EvalContext context_;
};

}  // namespace

Status ForEachCombination(const FromNode& from, const Scope& scope, const Expression* where,
                          Session& session, const std::function<Status(const SourceRows&)>& take) {
    return Joiner(scope, where, session)
        .Run(from, [&](const SourceRows& rows, const CombinedRows&) { return take(rows); });
}

Status ForEachCombinationOfRows(
    const FromNode& from, const Scope& scope, const Expression* where, Session& session,
    const std::function<Status(const SourceRows&, const CombinedRows&)>& take) {
    return Joiner(scope, where, session).Run(from, take);
}

}  // namespace jet::sql
