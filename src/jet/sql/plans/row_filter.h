// RowFilter: a condition that is tested on many rows. Comparisons of a text column with a constant
// at its beginning, joined by And, are prepared once; the rest, and whatever is out of the
// ordinary, is evaluated as it stands, so that the answer and its errors are the same.
#pragma once

#include "base/status.h"
#include "jet/sql/expressions/evaluate.h"
#include "jet/sql/syntax/ast.h"
#include "jet/tables/database.h"
#include "jet/text/plain_text.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace jet::sql {

class RowFilter {
public:
    // `condition` (nullptr: every row is kept) is bound to one source and must outlive the filter.
    explicit RowFilter(const Expression* condition);

    // The answer for the row whose fields are `stored` (nullptr: they have no stored form), if its
    // texts tell it as they are stored; `columns` are the columns in use. nullopt: it takes the
    // values.
    std::optional<bool> Decides(StoredFields* stored,
                                const std::vector<std::size_t>& columns) const;
    // Whether the condition is true for the row that `context` shows.
    base::Result<bool> Keeps(EvalContext& context) const;

private:
    struct TextTest {
        std::size_t slot = 0;
        Operator op = Operator::kEqual;
        PlainText constant;
    };
    static std::optional<TextTest> TestOf(const Expression& comparison);
    // nullopt: the test cannot tell.
    static std::optional<bool> Passes(const TextTest& test, const std::vector<Value>& row);

    const Expression* condition_;
    std::vector<TextTest> tests_;
    bool is_all_tests_ = false;  // nothing of the condition is left to be evaluated
};

}  // namespace jet::sql
