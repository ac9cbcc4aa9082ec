// PreparedSelect: a SELECT that is bound to its tables, as a subquery runs it. Query, in a room
// above this one, is what stands behind it; Session::prepare_select makes one.
#pragma once

#include "base/status.h"
#include "jet/sql/expressions/bind.h"
#include "jet/values/value.h"

#include <cstddef>
#include <vector>

namespace jet::sql {

using ResultRow = std::vector<Value>;

class PreparedSelect {
public:
    virtual ~PreparedSelect() = default;

    virtual std::size_t column_count() const = 0;
    // The columns of the statements around it that it uses.
    virtual std::vector<OuterUse> outer_uses() const = 0;
    // True: there is a row.
    virtual base::Result<bool> HasRows() = 0;
    virtual base::Result<std::vector<ResultRow>> Rows() = 0;
};

}  // namespace jet::sql
