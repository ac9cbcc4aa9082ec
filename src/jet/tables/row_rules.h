// RowRules: the validation rules of a table's design, ready to be tested. The storage layer keeps
// them and checks them before it stores a row; the SQL layer, which parses the rules, makes them.
#pragma once

#include "base/status.h"
#include "jet/values/schema.h"

#include <memory>
#include <span>
#include <vector>

namespace jet {

class RowRules {
public:
    virtual ~RowRules() = default;

    // The columns that the rules read: positions in TableDesign::columns.
    virtual const std::vector<std::size_t>& columns() const = 0;

    // 3317: the row breaks a rule. `values` has one entry per column of the table, of which those
    // of columns() count. `changed` has one entry per column: a column's rule is tested where a
    // column that it reads has changed, the table's own rule always.
    virtual base::Status Check(std::span<const Value> values,
                               const std::vector<bool>& changed) const = 0;
};

class RowRuleMaker {
public:
    virtual ~RowRuleMaker() = default;

    // nullptr: the design has no rules. An error names the rule that is not understood.
    virtual base::Result<std::unique_ptr<RowRules>> Make(const TableDesign& design) const = 0;
};

// Whether a column or the table has a validation rule.
inline bool HasRules(const TableDesign& design) {
    if (design.validation_rule) return true;
    for (const ColumnDesign& column : design.columns)
        if (column.validation_rule) return true;
    return false;
}

}  // namespace jet
