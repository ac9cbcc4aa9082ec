// RuleMaker: validation rules out of their texts. A column's rule may leave out the column in front
// of a comparison (">0 And <100", "Is Not Null", "Like ""A*"""), and a plain value in it means that
// the column equals it ("""a"" Or ""b"""). A table's rule names its columns. Patterns of Like have
// the wildcards "*", "?" and "#", as all expressions of a design; ALike has "%" and "_".
#pragma once

#include "jet/tables/row_rules.h"

#include <functional>

namespace jet::sql {

class RuleMaker final : public RowRuleMaker {
public:
    // `clock` (days since 1899-12-30) answers Now() and Date().
    explicit RuleMaker(std::function<double()> clock) : clock_(std::move(clock)) {}

    base::Result<std::unique_ptr<RowRules>> Make(const TableDesign& design) const override;

private:
    std::function<double()> clock_;
};

}  // namespace jet::sql
