// UnionQuery: the rows of several SELECTs, each a query of its own, put together.
#pragma once

#include "jet/sql/plans/query.h"

#include <memory>
#include <vector>

namespace jet::sql {

class UnionQuery final : public Query {
public:
    // `select` is the first SELECT with the others in its `unions`; its order is that of the whole.
    // Otherwise as Query::Prepare. 3307: the parts differ in their number of columns.
    static base::Result<std::unique_ptr<Query>> Prepare(SelectStatement&& select, Session& session,
                                                        Scope* outer);

    std::vector<OuterUse> outer_uses() const override;
    const ColumnDesign* OutputColumn(std::size_t) const override { return nullptr; }
    base::Result<bool> HasRows() override;
    base::Result<std::vector<ResultRow>> RowsOrFailures(FieldFailures* failures) override;

private:
    struct OrderColumn {
        std::size_t output = 0;
        bool descending = false;
    };

    base::Status ResolveOrder(const std::vector<OrderItem>& order_by);

    std::vector<std::unique_ptr<Query>> parts_;
    std::size_t distinct_parts_ = 0;  // the first ones, whose rows are made distinct
    std::vector<OrderColumn> order_;
};

}  // namespace jet::sql
